// SPDX-License-Identifier: LicenseRef-Halyard
// `halyard info`, `halyard soak`, and other builds of the plug-in by --plugin.
#include <gmock/gmock.h>
#include <sndfile.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "HalyardRunner.h"

namespace brt {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

const std::string kPlugin = std::string(" --plugin ") + PLUGIN_MODULE;

class PluginCommandTest : public HalyardTest {};

TEST_F(PluginCommandTest, infoTellsWhatHostsAreTold) {
    const auto info = nlohmann::json::parse(runWell("info --json" + kPlugin));
    EXPECT_EQ(info["product"], "Brontel Halyard");
    EXPECT_EQ(info["version"], "1.11.0");
    EXPECT_EQ(info["latencySamples"], 1667);
    EXPECT_EQ(info["parameters"].size(), 5u);
    EXPECT_EQ(info["parameters"][2]["display"], "100.0");
    EXPECT_FALSE(info["programs"].empty());
    EXPECT_EQ(info, nlohmann::json::parse(runWell("info --json"))) << "file and program are one build";
    EXPECT_THAT(runWell("info"), HasSubstr("1667 samples"));
}

TEST_F(PluginCommandTest, aFileSoundsAsWhatIsLinkedIn) {
    std::vector<double> samples = quietMusic(6000, 0.9);
    write("in.wav", soundOf(samples, SF_FORMAT_WAV | SF_FORMAT_DOUBLE, 3));
    runWell("render in.wav one.wav --gain 7.3 --hardness 40");
    runWell("render in.wav two.wav --gain 7.3 --hardness 40" + kPlugin);
    EXPECT_EQ(read("one.wav").samples, read("two.wav").samples);
}

TEST_F(PluginCommandTest, whatIsNoPluginIsTold) {
    std::ofstream(path("text.so")) << "no library";
    const Outcome text = run("info --plugin text.so");
    EXPECT_EQ(text.status, 1);
    EXPECT_THAT(text.errors, StartsWith("halyard: cannot load 'text.so': "));
    EXPECT_THAT(run("info --plugin missing.so").errors, StartsWith("halyard: cannot load 'missing.so': "));
    EXPECT_THAT(run("info --plugin libz.so.1").errors, StartsWith("halyard: cannot load 'libz.so.1': "))
        << "names are files, not libraries of the system";
    write("in.wav", soundOf({0.0}, SF_FORMAT_WAV | SF_FORMAT_DOUBLE));
    const Outcome library = run("render in.wav out.wav --plugin /lib/x86_64-linux-gnu/libm.so.6");
    EXPECT_EQ(library.status, 1);
    EXPECT_THAT(library.errors, HasSubstr("no VSTPluginMain"));
    EXPECT_THAT(files(), testing::UnorderedElementsAre("in.wav", "text.so"));
}

TEST_F(PluginCommandTest, soakTellsWhatItHasDone) {
    for (const std::string& plugin : {std::string(), kPlugin}) {
        const std::string told = runWell("soak --seconds 1 --seed 5 --instances 3" + plugin);
        EXPECT_THAT(told, HasSubstr("seed         5"));
        EXPECT_THAT(told, HasSubstr("3 at a time"));
    }
    EXPECT_THAT(runWell("soak --seconds 1 --calm --block 100"), HasSubstr("100 frames at 48000 Hz"));
    EXPECT_EQ(run("soak --seconds 0").status, 2);
}

}  // namespace
}  // namespace brt
