// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/HalyardRunner.h"

#include <sndfile.h>
#include <sys/wait.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <numbers>
#include <random>
#include <sstream>

namespace brt {

namespace {

namespace fs = std::filesystem;

std::string contentOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::stringstream content;
    content << stream.rdbuf();
    return content.str();
}

}  // namespace

HalyardTest::HalyardTest()
    : m_folder(fs::temp_directory_path() / ("halyard-test-" + std::to_string(std::random_device()()))) {
    fs::create_directories(m_folder);
}

HalyardTest::~HalyardTest() {
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
}

Outcome HalyardTest::run(const std::string& arguments) const {
    const fs::path output = m_folder.string() + ".out";
    const fs::path errors = m_folder.string() + ".err";
    // The suppressions count in builds with AddressSanitizer only. Redirections among the arguments come later and win.
    const std::string command =
        "cd '" + m_folder.string() + "' && LSAN_OPTIONS=print_suppressions=0:suppressions=" + LEAK_SUPPRESSIONS " >'" +
        output.string() + "' 2>'" + errors.string() + "' </dev/null " HALYARD_BINARY " " + arguments;
    const int status = std::system(command.c_str());
    Outcome outcome;
    if (WIFEXITED(status)) outcome.status = WEXITSTATUS(status);
    outcome.output = contentOf(output);
    outcome.errors = contentOf(errors);
    fs::remove(output);
    fs::remove(errors);
    return outcome;
}

std::string HalyardTest::runWell(const std::string& arguments) const {
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.status, 0) << arguments;
    EXPECT_EQ(outcome.errors, "") << arguments;
    return outcome.output;
}

void HalyardTest::write(const std::string& name, const Sound& sound) const {
    SF_INFO info{};
    info.format = sound.format;
    info.channels = sound.channelCount;
    info.samplerate = sound.rateHz;
    SNDFILE* file = sf_open(path(name).string().c_str(), SFM_WRITE, &info);
    ASSERT_NE(file, nullptr) << name << ": " << sf_strerror(nullptr);
    // Full scale at 1 is written as 2^(bits - 1); the library alone would take one step less.
    const int subformat = sound.format & SF_FORMAT_SUBMASK;
    const int bits = subformat == SF_FORMAT_PCM_16 ? 16 : subformat == SF_FORMAT_PCM_24 ? 24 : 0;
    if (bits == 0) {
        sf_writef_double(file, sound.samples.data(), sound.frameCount());
    } else {
        std::vector<int> integers;
        for (const double sample : sound.samples)
            integers.push_back(static_cast<int>(std::lround(sample * std::ldexp(1.0, bits - 1))) * (1 << (32 - bits)));
        sf_writef_int(file, integers.data(), sound.frameCount());
    }
    sf_close(file);
}

Sound HalyardTest::read(const std::string& name) const {
    SF_INFO info{};
    Sound sound;
    SNDFILE* file = sf_open(path(name).string().c_str(), SFM_READ, &info);
    EXPECT_NE(file, nullptr) << name << ": " << sf_strerror(nullptr);
    if (!file) return sound;
    sound.channelCount = info.channels;
    sound.rateHz = info.samplerate;
    sound.format = info.format;
    sound.samples.resize(static_cast<std::size_t>(info.frames * info.channels));
    EXPECT_EQ(sf_readf_double(file, sound.samples.data(), info.frames), info.frames);
    sf_close(file);
    return sound;
}

std::string HalyardTest::bytes(const std::string& name) const { return contentOf(path(name)); }

std::vector<std::string> HalyardTest::files() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(m_folder)) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

Sound soundOf(std::vector<double> samples, int format, int channelCount) {
    Sound sound;
    sound.channelCount = channelCount;
    sound.format = format;
    sound.samples = std::move(samples);
    return sound;
}

std::vector<double> quietMusic(int frameCount, double amplitude) {
    constexpr double kFractions[] = {0.0031, 0.0173, 0.0512, 0.1007, 0.1932};
    std::vector<double> samples;
    for (int i = 0; i < frameCount; ++i) {
        const double swell = std::sin(std::numbers::pi * (i + 1) / (frameCount + 1));
        double sum = 0;
        for (const double fraction : kFractions) sum += std::sin(2 * std::numbers::pi * fraction * i);
        samples.push_back(amplitude / 5 * sum * swell * swell * swell);
    }
    return samples;
}

}  // namespace brt
