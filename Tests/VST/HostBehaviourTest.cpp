// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/VST/CHostBehaviour.h"

#include "VstHost.h"

namespace brt {
namespace {

CHostBehaviour behaviourOf(CStringView product, CStringView vendor = "", int version = 2400) {
    return CHostBehaviour::find(version, product, vendor, false, false);
}

TEST(HostBehaviour, wildcardsCoverTheWholeText) {
    for (const char* const pattern : {"*", "ABC", "A*", "*C", "*B*", "A?C", "***", "A*C*", "?*?"})
        EXPECT_TRUE(matchesWildcard("ABC", pattern)) << pattern;
    for (const char* const pattern : {"", "AB", "BC", "?", "A?", "ABCD", "*D", "*?BC?*", "abc"})
        EXPECT_FALSE(matchesWildcard("ABC", pattern)) << pattern;
    EXPECT_TRUE(matchesWildcard("", "*"));
    EXPECT_TRUE(matchesWildcard("", ""));
    EXPECT_FALSE(matchesWildcard("", "?"));
    // The first place where a run may end is not the last.
    EXPECT_TRUE(matchesWildcard("AABAAB AAB", "*AAB"));
    EXPECT_TRUE(matchesWildcard("XABABC", "*ABC*"));
    // Steps back, but not without end.
    EXPECT_FALSE(matchesWildcard(std::string(100000, 'A'), "*A*A*A*A*A*A*B"));
}

TEST(HostBehaviour, followsTheNamesThatHostsGiveThemselves) {
    EXPECT_TRUE(behaviourOf("").isMultichannelAllowed);
    EXPECT_FALSE(behaviourOf("", "", 2299).isMultichannelAllowed);
    EXPECT_TRUE(behaviourOf("", "", 2300).isMultichannelAllowed);
    EXPECT_FALSE(behaviourOf("Sony Acid Pro").isMultichannelAllowed);
    EXPECT_TRUE(behaviourOf("Sony Acid Pro 7").isMultichannelAllowed);
    EXPECT_FALSE(behaviourOf("My Premiere").isMultichannelAllowed);
    EXPECT_FALSE(CHostBehaviour::find(2400, "", "", true, false).isMultichannelAllowed);

    EXPECT_FALSE(behaviourOf("").needsFunctionLock);
    EXPECT_TRUE(CHostBehaviour::find(2400, "", "", false, true).needsFunctionLock);
    for (const char* const name : {"WaveLab 6", "a samplitude", "Chainer"})
        EXPECT_TRUE(behaviourOf(name).needsFunctionLock) << name;

    EXPECT_TRUE(behaviourOf("").hasAutoRouting);
    for (const char* const name : {"Sonar", "Cakewalk", "FX Teleport"})
        EXPECT_FALSE(behaviourOf(name).hasAutoRouting) << name;
    EXPECT_FALSE(behaviourOf("", "Twelve Tone Systems").hasAutoRouting);
    EXPECT_TRUE(behaviourOf("Twelve Tone Systems").hasAutoRouting);

    EXPECT_TRUE(behaviourOf("").focusesOnClick);
    for (const char* const name : {"Wavelab", "Cubase 13", "FruityLoops"})
        EXPECT_FALSE(behaviourOf(name).focusesOnClick) << name;
    EXPECT_FALSE(behaviourOf("", "Steinberg Media").focusesOnClick);
}

}  // namespace
}  // namespace brt
