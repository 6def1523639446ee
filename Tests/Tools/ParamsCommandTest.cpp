// SPDX-License-Identifier: LicenseRef-Halyard
// `halyard params`.
#include <gmock/gmock.h>

#include <sstream>

#include "HalyardRunner.h"

namespace brt {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

// The words of each line.
std::vector<std::vector<std::string>> wordsOf(const std::string& output) {
    std::vector<std::vector<std::string>> lines;
    std::istringstream text(output);
    for (std::string line; std::getline(text, line);) {
        std::istringstream words(line);
        lines.emplace_back();
        for (std::string word; words >> word;) lines.back().push_back(word);
    }
    return lines;
}

class ParamsCommandTest : public HalyardTest {};

TEST_F(ParamsCommandTest, listsWhatHostsAndUsersSee) {
    const auto lines = wordsOf(runWell("params"));
    const auto find = [&](const std::string& name) {
        for (const auto& line : lines)
            if (line[0] == name) return line;
        return std::vector<std::string>();
    };
    EXPECT_THAT(lines[0], ElementsAre("name", "range", "default", "unit", "flags", "host"));
    EXPECT_THAT(find("plugin.modMain.bypass-enable"),
                ElementsAre("plugin.modMain.bypass-enable", "Off", "to", "On", "Off", "persistent", "single-group",
                            "single-element", "0", "Bypass"));
    EXPECT_THAT(find("plugin.modMain.modHal.ingain"),
                ElementsAre("plugin.modMain.modHal.ingain", "0.0", "to", "24.0", "0.0", "dB", "storable", "1", "Gain"));
    EXPECT_THAT(find("plugin.modMain.modHal.hardness"), ElementsAre("plugin.modMain.modHal.hardness", "0.0", "to",
                                                                    "100.0", "100.0", "%", "storable", "2", "Hardnes"));
    EXPECT_THAT(
        find("plugin.modMain.io-params.group-names"),
        ElementsAre("plugin.modMain.io-params.group-names", "text", "1,2,3,4,5,6,7,8", "storable", "single-group"));
    EXPECT_THAT(find("plugin.modMain.modHal.modInGain.gain"), ElementsAre()) << "an alias is no parameter";
}

TEST_F(ParamsCommandTest, showsValuesFromAllSides) {
    const auto lines = wordsOf(runWell("params ingain 12 99 -6"));
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_THAT(lines[1], ElementsAre("12", "3.981071706", "0.5", "12.0", "12", "12.0", "12.00"));
    EXPECT_EQ(lines[2][2], "1") << "held within the range";
    EXPECT_EQ(lines[3][2], "0");
    EXPECT_THAT(runWell("params plugin.modMain.modHal.residue on"), HasSubstr("on     1         1           On"));
}

TEST_F(ParamsCommandTest, saysWhatIsWrong) {
    const std::pair<const char*, const char*> cases[] = {
        {"hardnes 5", "halyard: params: an instance has no parameter 'hardnes'; did you mean 'hardness'?\n"},
        {"ingain loud",
         "halyard: params: 'plugin.modMain.modHal.ingain' can't take 'loud'; its range is 0.0 to 24.0 dB\n"},
        {"group-names a",
         "halyard: params: 'plugin.modMain.io-params.group-names' holds no number; it has only one view\n"},
    };
    for (const auto& [arguments, errors] : cases) {
        const Outcome outcome = run("params " + std::string(arguments));
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(outcome.errors, errors);
    }
}

}  // namespace
}  // namespace brt
