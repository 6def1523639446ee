// SPDX-License-Identifier: LicenseRef-Halyard
// `halyard graph`.
#include <gmock/gmock.h>

#include "HalyardRunner.h"

namespace brt {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class GraphCommandTest : public HalyardTest {};

TEST_F(GraphCommandTest, showsWhatRunsAndHowLateItIs) {
    const std::string stereo = runWell("graph");
    EXPECT_THAT(stereo,
                StartsWith("plugin.modMain <audio:process-def>  in: 0 (group 0, late by 0), 1 (group 0, late by 0)\n"));
    EXPECT_THAT(stereo, HasSubstr("plugin.modMain.modHal [group 0]"));
    EXPECT_THAT(stereo, HasSubstr("-> plugin.modMain.modBypass port 1  (from its input)\n"));
    EXPECT_THAT(stereo, HasSubstr("in all late by 1667 samples\n"));
    EXPECT_THAT(stereo, Not(HasSubstr("modGroupSolo"))) << "nothing is soloed";
    EXPECT_THAT(runWell("graph --set plugin.modMain.group-solo-bypass=0"), HasSubstr("plugin.modMain.modGroupSolo"));
}

TEST_F(GraphCommandTest, metersExistWhileSomebodyWatches) {
    EXPECT_THAT(runWell("graph"), Not(HasSubstr("Meter")));
    const std::string watched = runWell("graph --watch");
    for (const char* const meter : {"modHal.modHalyardMeter <audio:modHalyardMeter>", "modMeterOut <audio:modMeter>",
                                    "-> plugin.modMain.modMeterIODiff port 1  (from its input)"})
        EXPECT_THAT(watched, HasSubstr(meter));
    EXPECT_THAT(watched, HasSubstr("in all late by 1667 samples\n"));
}

TEST_F(GraphCommandTest, writesForGraphvizTheSameEachTime) {
    const std::string dot = runWell("graph --dot --channels 1");
    EXPECT_THAT(dot, StartsWith("digraph halyard {\n"));
    EXPECT_THAT(dot, HasSubstr("[label=\"plugin.modMain\\naudio:process-def\\nlate by 0\", shape=ellipse];\n"));
    EXPECT_EQ(dot, runWell("graph --dot --channels 1"));
}

TEST_F(GraphCommandTest, saysWhatIsWrongWithASetting) {
    EXPECT_EQ(run("graph --set gain").errors, "halyard: graph: the setting 'gain' is not of the form NAME=NUMBER\n");
    const Outcome unknown = run("graph --set gain=1");
    EXPECT_EQ(unknown.status, 1);
    EXPECT_THAT(unknown.errors, StartsWith("halyard: graph: there is no number called 'gain' in an instance;"));
}

}  // namespace
}  // namespace brt
