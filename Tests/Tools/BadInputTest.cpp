// SPDX-License-Identifier: LicenseRef-Halyard
// Whatever is wrong gives one line that helps, a status that isn't 0, and no trace in the folder.
#include <gmock/gmock.h>
#include <signal.h>
#include <sndfile.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <thread>

#include "Tools/Halyard/ChunkCheck.h"
#include "Tools/HalyardRunner.h"

namespace brt {
namespace {

using testing::HasSubstr;

constexpr int kWav16 = SF_FORMAT_WAV | SF_FORMAT_PCM_16;

class BadInputTest : public HalyardTest {
protected:
    BadInputTest() {
        write("in.wav", soundOf(quietMusic(3000, 0.9), kWav16));
        write("old.wav", soundOf(std::vector<double>(10), kWav16));
    }

    void expectRefusal(const std::string& arguments, int status, const std::string& words) {
        const std::vector<std::string> before = files();
        const std::string old = bytes("old.wav");
        const std::string in = bytes("in.wav");
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, status) << arguments;
        EXPECT_THAT(outcome.errors, testing::StartsWith("halyard: ")) << arguments;
        EXPECT_THAT(outcome.errors, HasSubstr(words)) << arguments;
        EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1) << outcome.errors;
        EXPECT_EQ(files(), before) << arguments;
        EXPECT_EQ(bytes("old.wav"), old) << arguments;
        EXPECT_EQ(bytes("in.wav"), in) << arguments;
    }

    void cut(const std::string& from, const std::string& to, std::size_t missing) {
        const std::string whole = bytes(from);
        std::ofstream(path(to), std::ios::binary) << whole.substr(0, whole.size() - missing);
    }
};

TEST_F(BadInputTest, inputsThatAreNoSoundFiles) {
    std::ofstream(path("text.wav")) << "these are words\n";
    std::ofstream(path("nothing.wav")).flush();
    expectRefusal("render missing.wav out.wav", 1, "cannot read 'missing.wav': no such file");
    expectRefusal("render . out.wav", 1, "it is a folder");
    expectRefusal("render text.wav out.wav", 1, "cannot read 'text.wav': it is not a sound file");
    expectRefusal("render nothing.wav out.wav", 1, "it is not a sound file");
    expectRefusal("render /dev/null out.wav", 1, "it is a device");
    expectRefusal("plot missing.wav out.png", 1, "no such file");
}

TEST_F(BadInputTest, tooManyChannels) {
    write("wide.wav", soundOf(std::vector<double>(17), SF_FORMAT_WAVEX | SF_FORMAT_PCM_16, 17));
    expectRefusal("render wide.wav out.wav", 1, "it has 17 channels; halyard takes 1 to 16");
}

TEST_F(BadInputTest, filesThatAreCutOff) {
    write("in.flac", soundOf(quietMusic(30000, 0.9), SF_FORMAT_FLAC | SF_FORMAT_PCM_16));
    cut("in.flac", "cut.flac", 20000);
    expectRefusal("render cut.flac out.wav", 1, "it is cut off");
    struct Case {
        const char* name;
        int format;
    };
    for (const Case& c :
         {Case{"a.wav", kWav16}, Case{"a.aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_24},
          Case{"a.caf", SF_FORMAT_CAF | SF_FORMAT_FLOAT}, Case{"a.w64", SF_FORMAT_W64 | SF_FORMAT_PCM_16},
          Case{"a.rf64", SF_FORMAT_RF64 | SF_FORMAT_DOUBLE}}) {
        write(c.name, soundOf(quietMusic(1000, 0.9), c.format));
        EXPECT_FALSE(findMissingSound(path(c.name)).has_value()) << c.name;
        const std::string name = "cut-" + std::string(c.name);
        cut(c.name, name, 400);
        EXPECT_TRUE(findMissingSound(path(name)).has_value()) << c.name;
        expectRefusal("render " + name + " out.wav", 1, "it is cut off: ");
    }
    // A program that writes into a pipe can't go back to tell the length.
    std::string open = bytes("a.wav");
    open.replace(40, 4, "\xff\xff\xff\xff");
    std::ofstream(path("open.wav"), std::ios::binary) << open;
    runWell("render open.wav open-out.wav");
    EXPECT_EQ(read("open-out.wav").frameCount(), 1000);
}

// A recorder that was switched off has not come to write the length into the header.
TEST_F(BadInputTest, recordingsThatWereNeverFinished) {
    std::string unfinished = bytes("in.wav");
    unfinished.replace(40, 4, std::string(4, '\0'));
    std::ofstream(path("unfinished.wav"), std::ios::binary) << unfinished;
    expectRefusal("render unfinished.wav out.wav", 1, "it was never finished");
    // No sound at all, and another chunk behind it: a file like any other.
    std::ofstream(path("empty.wav"), std::ios::binary) << unfinished.substr(0, 44) << "LIST" << std::string(4, '\0');
    runWell("render empty.wav empty-out.wav");
}

// FLAC that went through a pipe: the header says 0 samples, which stands for a length that is not known.
TEST_F(BadInputTest, aLengthThatIsNotToldIsFound) {
    write("in.flac", soundOf(quietMusic(30000, 0.9), SF_FORMAT_FLAC | SF_FORMAT_PCM_16));
    std::string flac = bytes("in.flac");
    flac[21] &= static_cast<char>(0xF0);
    flac.replace(22, 4, std::string(4, '\0'));
    std::ofstream(path("open.flac"), std::ios::binary) << flac;
    runWell("render in.flac out.wav");
    runWell("render open.flac open-out.wav");
    EXPECT_EQ(read("open-out.wav").samples, read("out.wav").samples);
}

TEST_F(BadInputTest, outputsThatMustNotOrCannotBeWritten) {
    std::filesystem::create_symlink("in.wav", path("same.wav"));
    std::filesystem::create_symlink("/dev/full", path("full.wav"));
    expectRefusal("render in.wav old.wav", 1, "it exists already");
    expectRefusal("render in.wav in.wav --force", 1, "it is an input");
    expectRefusal("render in.wav same.wav --force", 1, "it is an input");
    expectRefusal("render in.wav out.wav --residue-out out.wav", 1, "twice");
    expectRefusal("render in.wav out.wav --residue-out old.wav", 1, "it exists already");
    expectRefusal("render in.wav . --force", 1, "it is a folder");
    expectRefusal("render in.wav nowhere/out.wav", 1, "there is no folder 'nowhere'");
    expectRefusal("render in.wav full.wav --force", 1, "No space left on device");
    expectRefusal("measure --help >/dev/full", 1, "cannot write to standard output");
    ASSERT_EQ(mkfifo(path("pipe.wav").c_str(), 0600), 0);
    expectRefusal("render in.wav pipe.wav --force", 1, "it is a pipe");
    std::filesystem::create_symlink("nowhere.wav", path("dangling.wav"));
    expectRefusal("render in.wav dangling.wav --force", 1, "a link that leads nowhere");
    std::filesystem::create_symlink("in.wav", path("in.png"));
    expectRefusal("plot in.wav in.png --force", 1, "it is the input");
}

TEST_F(BadInputTest, formatsThatDoNotFit) {
    expectRefusal("render in.wav out.ogg", 1, "its ending names no file type");
    expectRefusal("render in.wav out.flac --format float", 1, "choose --format 24");
    expectRefusal("render in.wav out.wav --plot out.jpg", 1, "ends in .png");
    expectRefusal("plot in.wav old.wav --force", 1, "ends in .png");
    expectRefusal("demo-signal out.txt", 1, "its ending names no file type");
}

TEST_F(BadInputTest, wrongCommandLines) {
    expectRefusal("", 2, "no command is given");
    expectRefusal("bogus", 2, "'bogus' is no command");
    expectRefusal("render in.wav", 2, "one input and one output");
    expectRefusal("render in.wav out.wav --bogus", 2, "--bogus");
    expectRefusal("render in.wav out.wav --gain", 2, "--gain: a value is missing");
    for (const std::string value : {"24.1", "-0.1", "nan", "inf", "0x5", "1e1", "5dB", "''", "1,5"})
        expectRefusal("render in.wav out.wav --gain " + value, 2, "is no number from 0 to 24 dB");
    expectRefusal("render in.wav out.wav --out-gain 1", 2, "is no number from -24 to 0 dB");
    expectRefusal("render in.wav out.wav --hardness 101", 2, "is no number from 0 to 100 %");
    expectRefusal("render in.wav out.wav --block 0", 2, "is no whole number from 1 to 8192");
    expectRefusal("render in.wav out.wav --format 20", 2, "'20' is none of 8, 16, 24, 32, float, double");
    expectRefusal("render in.wav out.wav --residue --residue-out r.wav", 2, "leave out");
    expectRefusal("measure --rate 100", 2, "is no whole number from 8000 to 768000 Hz");
}

TEST_F(BadInputTest, helpAndVersionAreNoErrors) {
    EXPECT_THAT(runWell("--version"), testing::StartsWith("halyard "));
    for (const std::string command : {"", "render ", "plot ", "measure ", "demo-signal "})
        EXPECT_THAT(runWell(command + "--help"), HasSubstr("Example"));
}

TEST_F(BadInputTest, oneBadFileDoesNotStopTheOthers) {
    std::ofstream(path("text.wav")) << "these are words\n";
    std::filesystem::create_directory(path("results"));
    const Outcome outcome = run("render in.wav text.wav old.wav --out-dir results -j 2");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1) << outcome.errors;
    EXPECT_THAT(outcome.errors, HasSubstr("cannot read 'text.wav'"));
    EXPECT_EQ(read("results/in.wav").frameCount(), 3000);
    EXPECT_EQ(read("results/old.wav").frameCount(), 10);
    EXPECT_FALSE(std::filesystem::exists(path("results/text.wav")));
    expectRefusal("render in.wav old.wav --out-dir .", 1, "it is an input");
}

TEST_F(BadInputTest, anInterruptedRenderLeavesNothingBehind) {
    // An hour of silence, which takes no room on the disk and far longer than the test.
    write("long.wav", soundOf(std::vector<double>(100), SF_FORMAT_WAV | SF_FORMAT_FLOAT));
    std::string header = bytes("long.wav");
    const auto data = header.find("data");
    ASSERT_NE(data, std::string::npos);
    const std::uint32_t soundBytes = 3600u * 48000u * 4u;
    header.resize(data + 8);
    for (int i = 0; i < 4; ++i)
        header[data + 4 + static_cast<std::size_t>(i)] = static_cast<char>(soundBytes >> (8 * i));
    std::ofstream(path("long.wav"), std::ios::binary) << header;
    std::filesystem::resize_file(path("long.wav"), header.size() + soundBytes);

    for (const int signalNumber : {SIGINT, SIGTERM}) {
        const std::vector<std::string> before = files();
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            if (chdir(path("").c_str()) == 0 && freopen("/dev/null", "w", stderr))
                execl(HALYARD_BINARY, "halyard", "render", "long.wav", "out.wav", "--residue-out", "r.wav", nullptr);
            _exit(99);
        }
        // It is at work as soon as its unfinished files are there.
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (files().size() < before.size() + 2 && std::chrono::steady_clock::now() < limit)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        EXPECT_GE(files().size(), before.size() + 2);
        kill(child, signalNumber);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFEXITED(status));
        EXPECT_EQ(WEXITSTATUS(status), 128 + signalNumber);
        EXPECT_EQ(files(), before);
    }
}

}  // namespace
}  // namespace brt
