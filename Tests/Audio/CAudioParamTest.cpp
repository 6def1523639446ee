// SPDX-License-Identifier: LicenseRef-Halyard
// A parameter seen from everybody but the audio thread.
#include "ParamFixture.h"

#include <cmath>
#include <limits>

namespace brt {
namespace {

using Values = std::vector<double>;
using Changes = std::vector<ChangeLog::Change>;

class CAudioParamTest : public ParamFixture {};

TEST_F(CAudioParamTest, withoutADefinitionItIgnoresWritesAndReadsAsTheFallback) {
    CAudioParam& unknown = collector().getParam("plugin.unknown");
    unknown.setFloat(3.0, 0, this);
    EXPECT_EQ(unknown.getFloat(0, 0, -7.0), -7.0);
    EXPECT_EQ(collector().waitingCount(), 0);
}

TEST_F(CAudioParamTest, aWriteBehindTheEndBringsTheMissingElementsWithIt) {
    CAudioParam& list = param("list", {1, 2, 3});
    list.setFloatAt(4, 0, 9.0, this);
    ChangeLog changes(collector(), list);
    list.setFloatAt(4, 5, 8.0, this);
    EXPECT_EQ(values(list.control(), 4), (Values{9, 2, 3, 1, 1, 8}));
    EXPECT_EQ(changes.take(), (Changes{{4, 1, 5, false}}));

    CAudioParam& names = textParam("names", "L,R");
    names.setString(0, 2, "C", this);
    EXPECT_EQ(names.getString(0, 1), "R");
    EXPECT_EQ(names.getString(0, 2), "C");
    EXPECT_EQ(names.getString(5, 1), "R") << "another group reads the defaults";
}

TEST_F(CAudioParamTest, placesOfASingleGroupAndElementAreOne) {
    CAudioParam& single = param("single", {5}, {.isSingleGroup = true, .isSingleElement = true});
    single.setFloatAt(3, 7, 6.0, this);
    EXPECT_EQ(single.control().groupCount(), 1);
    EXPECT_EQ(values(single.control(), 0), Values{6});
    change(single, 2, 0, {1, 2, 3}, {}, true);
    EXPECT_EQ(values(single.control(), 0), Values{1});
}

TEST_F(CAudioParamTest, whatIsNoNumberOrBeyondTheLimitsIsIgnored) {
    CAudioParam& gain = param("gain", {5});
    for (const double bad : {std::nan(""), HUGE_VAL, -HUGE_VAL}) gain.setFloat(bad, 0, this);
    for (const int group : {-1, 32, 9998}) gain.setFloat(1.0, group, this);
    for (const int element : {-1, 1024, 2000000000}) gain.setFloatAt(0, element, 1.0, this);
    gain.setString(0, 0, "text", this);
    EXPECT_EQ(gain.control().groupCount(), 0);
    gain.setFloatAt(31, 1023, 1.0, this);
    EXPECT_EQ(gain.control().elementCount(31), 1024);
}

TEST_F(CAudioParamTest, resetsGoBackToTheDefaultPresetOrToTheDefinition) {
    CAudioParam& gain = param("gain", {5});
    CAudioParam& preset = param("preset", {5});
    change(preset, 0, 0, {7});
    change(preset, 1, 0, {8, 9}, {}, true);
    const Bytes defaultPreset = saved(preset);
    EXPECT_EQ(load(gain, defaultPreset, -1, -1, true), "");
    EXPECT_EQ(gain.getFloat(0, 0, 0), 5) << "values themselves don't change";

    change(gain, 0, 0, {1});
    change(gain, 2, 0, {2}, {}, true);
    gain.resetToDefault(-1, -1, {});
    EXPECT_EQ(values(gain.control(), 0), Values{7});
    EXPECT_EQ(values(gain.control(), 1), (Values{8, 9})) << "a group that only the default preset has";
    EXPECT_EQ(gain.control().elementCount(2), 0);

    change(gain, 1, 0, {1, 1});
    gain.resetToDefault(1, 1, {});
    EXPECT_EQ(values(gain.control(), 1), (Values{1, 9}));
    gain.resetToDefault(1, 0, {}, true);
    EXPECT_EQ(values(gain.control(), 1), (Values{7, 9})) << "the very first value";
    gain.resetToDefault(1, 3, {});
    EXPECT_EQ(values(gain.control(), 1), (Values{7, 9, 5, 5})) << "no such value: the definition's";

    gain.resetToDefinition(-1, -1, false, {});
    EXPECT_EQ(values(gain.control(), 0), Values{5});
    EXPECT_EQ(gain.control().elementCount(1), 0);
    change(gain, 1, 0, {1, 2, 3});
    gain.resetToDefinition(1, 1, true, {});
    EXPECT_EQ(values(gain.control(), 1), (Values{1, 5})) << "the last element: those behind go";
}

TEST_F(CAudioParamTest, aLoadedStateIsCompleteAndADamagedOneChangesNothing) {
    CAudioParam& source = param("source", {5});
    CAudioParam& target = param("target", {5});
    change(source, 0, 0, {1});
    change(source, 1, 0, {2, 300});
    const Bytes twoGroups = saved(source);
    change(target, 3, 0, {4});
    EXPECT_EQ(load(target, twoGroups), "");
    EXPECT_EQ(values(target.control(), 0), Values{1});
    EXPECT_EQ(values(target.control(), 1), (Values{2, 100})) << "limited to the range";
    EXPECT_EQ(target.control().elementCount(3), 0);
    EXPECT_EQ(target.getFloat(3, 0, 0), 5);

    const Bytes before = saved(target);
    for (std::size_t length = 0; length < twoGroups.size(); ++length)
        EXPECT_NE(load(target, Bytes(twoGroups.begin(), twoGroups.begin() + static_cast<long>(length))), "") << length;
    CAudioParam& pair = param("pair", {5, 6}, {.elementSize = 2});
    EXPECT_EQ(load(target, saved(pair)), "Unsupported storage format (esize=2, dtype=0; should be: esize=1, dtype=0).");
    EXPECT_EQ(saved(target), before);
}

TEST_F(CAudioParamTest, aGroupOrAnElementOfAPresetGoesWhereItIsAskedTo) {
    CAudioParam& source = param("source", {5});
    CAudioParam& target = param("target", {5});
    change(source, 1, 0, {7, 8});
    const Bytes group1 = saved(source, 1);
    change(target, 4, 0, {1, 1, 1});
    EXPECT_EQ(load(target, group1, 4), "");
    EXPECT_EQ(values(target.control(), 4), (Values{7, 8}));
    EXPECT_EQ(load(target, group1, 4, 1), "");
    EXPECT_EQ(values(target.control(), 4), (Values{7, 7}));

    EXPECT_EQ(load(target, group1, kWholeParam, 0), "");
    EXPECT_EQ(load(target, group1, kWholeParam, 1), "");
    EXPECT_EQ(target.control().defaultCount(), 2);
    EXPECT_EQ(target.control().groupCount(), 0);
    EXPECT_EQ(load(target, group1, kWholeParam, 5), "");
    EXPECT_EQ(log().back(), "target // Unexpected LoadElement 5 (expected 2).");
}

TEST_F(CAudioParamTest, anEqualDefinitionChangesNothingAnotherOneStartsAnew) {
    CAudioParam& gain = param("gain", {5});
    gain.setFloat(6, 0, this);
    gain.setInfo(info("gain", {1}), {});
    EXPECT_EQ(gain.getFloat(0, 0, 0), 6);
    gain.setInfo(info("other", {1}), {});
    EXPECT_EQ(gain.getFloat(0, 0, 0), 1);
}

TEST_F(CAudioParamTest, aliasesLeadToOneParameter) {
    EXPECT_EQ(messageOf(collector().addAlias("mod.gain", "ingain")), "");
    EXPECT_EQ(messageOf(collector().addAlias("mod.gain", "shared")), "");
    EXPECT_EQ(messageOf(collector().addAlias("shared", "plugin.shared")), "");
    CAudioParam& shared = param("plugin.shared", {5});
    EXPECT_EQ(&collector().getParam("mod.gain"), &shared);
    EXPECT_TRUE(collector().isAliased("mod.gain"));
    EXPECT_EQ(messageOf(collector().addAlias("plugin.shared", "mod.gain")),
              "The parameter name 'plugin.shared' can't stand for 'mod.gain': that stands for the former.");
    collector().removeAlias("mod.gain");
    EXPECT_NE(&collector().getParam("mod.gain"), &shared);
}

// Keeps what it is told, as a history does.
class Recorder final : public CAudioParamUndoData {
public:
    void recordBefore(CStringView name, int group, const CAudioParamStorage& storage, bool) override {
        m_lines.push_back(text(name) + " " + std::to_string(group) + " had " +
                          std::to_string(storage.elementCount(group)));
    }
    void recordAfter(CStringView, int group, const CAudioParamStorage& storage, bool) override {
        m_lines.back() += " has " + std::to_string(storage.elementCount(group));
    }
    std::vector<std::string> m_lines;
};

TEST_F(CAudioParamTest, onlyWhatIsStoredIsRecorded) {
    Recorder recorder;
    CAudioParam& gain = param("gain", {5});
    CAudioParamInfo& passing = info("passing", {5});
    passing.isStorable = false;
    CAudioParam& other = collector().getParam("passing");
    other.setInfo(passing, {.undo = &recorder});
    gain.setFloatAt(2, 1, 3.0, this, {.undo = &recorder});
    other.setFloatAt(0, 0, 3.0, this, {.undo = &recorder});
    EXPECT_EQ(recorder.m_lines, std::vector<std::string>{"gain 2 had 0 has 2"});
}

TEST_F(CAudioParamTest, aSingleGroupAnswersForAll) {
    CAudioParam& single = param("single", {5}, {.isSingleGroup = true, .isSingleElement = true});
    CAudioParam& several = param("several", {5});
    change(several, 0, 0, {7});
    change(several, 1, 0, {9});
    EXPECT_EQ(load(single, saved(several)), "");
    EXPECT_EQ(values(single.control(), 0), (std::vector<double>{7})) << "further groups of a set have no place";
    single.resetToDefault(3, 2, {});
    EXPECT_EQ(single.getFloat(0, 0, 0), 5) << "a reset of any group";
}

}  // namespace
}  // namespace brt
