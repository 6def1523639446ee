// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/ParamNames.h"

#include <gtest/gtest.h>

#include "Core/PrintText.h"

namespace brt {
namespace {

TEST(ParamNames, areResolvedFromTheProcess) {
    const struct {
        const char* name;
        const char* basePath;
        const char* fullName;
    } kCases[] = {
        {"enable", "plugin.modMain.modGroupSolo", "plugin.modMain.modGroupSolo.enable"},
        {"modInGain.gain", "plugin.modMain", "plugin.modMain.modInGain.gain"},
        {".enable", "a.b", "a.b.enable"},
        {"^io-params.channel-group-solo", "plugin.modMain.modGroupSolo", "plugin.modMain.io-params.channel-group-solo"},
        {"^.x", "a.b", "a.x"},
        {"/plugin.modMain.meter-rmstime", "plugin.modMain.modGroupSolo", "plugin.modMain.meter-rmstime"},
        {"/", "a.b", ""},
        {"/^x", "a.b", "^x"},
        {"", "a.b", "a.b"},
        {"^^", "a.b.c", "a"},
        {"^", "a", ""},
        {"^^^", "a", ""},
        {"^^x", "a.b.c", "a.x"},
        {"x^", "a", "a.x^"},
    };
    for (const auto& test : kCases)
        EXPECT_EQ(resolveParamName(test.name, test.basePath), test.fullName) << test.name << " at " << test.basePath;
}

}  // namespace
}  // namespace brt
