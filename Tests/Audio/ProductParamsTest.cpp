// SPDX-License-Identifier: LicenseRef-Halyard
// Every parameter of the product's document, over its whole range.
#include "AudioBytes.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <map>
#include <set>
#include <string>

#include "Audio/CAudioParamConverter.h"
#include "Audio/CAudioParamDef.h"
#include "Core/TreeFixture.h"
#include "Documents/ProductTags.h"
#include "Documents/Resources.h"

namespace brt {
namespace {

// What users and hosts meet: range and default as text, and what keeps it.
struct CFacts {
    std::string range;
    std::string defaults;
    std::string flags;
    bool operator==(const CFacts&) const = default;
};
void PrintTo(const CFacts& facts, std::ostream* out) {
    *out << facts.range << " | " << facts.defaults << " | " << facts.flags;
}

class ProductParamsTest : public TreeFixture {
protected:
    void SetUp() override {
        TreeFixture::SetUp();
        CApplication::start({productTags(), kHalyardResources});
        collect(*CApplication::sharedObject());
        ASSERT_GT(m_definitions.size(), 30U);
    }

    static std::string shown(const CAudioParamInfo& info, double value) {
        CString text;
        info.converter()->format(text, info, 0, value, info.defaults.data(), EAudioTextMode::kPlain);
        return text.toUtf8();
    }

    static double display(const CAudioParamInfo& info, double value) {
        return info.converter()->normalToDisplay(info, 0, info.converter()->internalToNormal(info, 0, value));
    }
    // What one step of the last digit that is shown means; for names nothing.
    static double lastPlace(const std::string& shownText) {
        if (std::isalpha(static_cast<unsigned char>(shownText[0]))) return 0.0;
        const std::size_t point = shownText.find('.');
        return point == std::string::npos ? 1.0 : std::pow(10.0, -static_cast<double>(shownText.size() - point - 1));
    }

    static CFacts factsOf(const CAudioParamInfo& info) {
        CFacts facts;
        if (info.format.isFloat()) facts.range = shown(info, info.minimum()) + " to " + shown(info, info.maximum());
        for (const double value : info.defaults.defaults())
            facts.defaults += (facts.defaults.empty() ? "" : ",") + shown(info, value);
        const std::pair<bool, const char*> kFlags[] = {
            {info.isGlobal, "g"},
            {info.isStorable, "s"},
            {info.isPersistent, "p"},
            {info.format.isSingleGroup, "1g"},
            {info.format.isSingleElement, "1e"},
        };
        for (const auto& [isSet, flag] : kFlags) facts.flags += isSet ? flag : "";
        return facts;
    }

    std::map<std::string, const CAudioParamInfo*> m_definitions;

private:
    void collect(const CObject& object) {
        if (const auto* const definition = dynamic_cast<const CAudioParamDef*>(&object))
            m_definitions[text(object.getFullName())] = &definition->info();
        for (const CObject* const child : object.children()) collect(*child);
    }
};

TEST_F(ProductParamsTest, whatUsersTurnHasItsRangeAndDefault) {
    const std::map<std::string, CFacts> kExpected = {
        {"bypass-enable", {"Off to On", "Off", "gp1g1e"}},
        {"channel-counts", {"0 to 256", "2", "g1e"}},
        {"group-solo-bypass", {"Off to On", "Off", "g1g1e"}},
        {"groupsel", {"0 to 7", "0", "gp1g1e"}},
        {"host-oversampling-mode", {"0 to 3", "0", "g1g1e"}},
        {"instance-name", {"", "", "gp1g"}},
        {"io-params.channel-group-solo", {"Off to On", "Off", "gs"}},
        {"io-params.grouping", {"0 to 7", "0,0,1,1,2,2,3,3", "gs1g"}},
        {"io-params.in-routing", {"0 to 16", "1,2,0,0,0,0,0,0", "gs1g"}},
        {"io-params.group-names", {"", "1,2,3,4,5,6,7,8", "gs1g"}},
        {"io-params.show-all-channels", {"Off to On", "Off", "gs1g1e"}},
        {"main-window-size", {"10.00 to 8192.00", "480.00,192.00", "g1g"}},
        {"meter-peaktime", {"100 to 10000", "1000", "g1g1e"}},
        {"meter-releasetime", {"0.00 to 5000", "750", "g1g1e"}},
        {"meter-rmstime", {"1.00 to 1000", "2.00", "g1g1e"}},
        {"modHal.hardness", {"0.0 to 100.0", "100.0", "gs"}},
        {"modHal.ingain", {"0.0 to 24.0", "0.0", "gs"}},
        {"modHal.outgain", {"-24.0 to 0.0", "0.0", "gs"}},
        {"modHal.residue", {"Off to On", "Off", "gs"}},
        {"preset-name", {"", "Default", "gs1g1e"}},
        {"uicolor-params.mode-name", {"", "Default", "g1g1e"}},
    };
    for (const auto& [name, facts] : kExpected) {
        const CAudioParamInfo* const info = m_definitions["audio.modMain." + name];
        ASSERT_TRUE(info) << name;
        EXPECT_EQ(factsOf(*info), facts) << name;
    }
}

TEST_F(ProductParamsTest, everyValueComesBackFromItsNormalisedFormAndFromItsText) {
    constexpr int kSteps = 1000;
    for (const auto& [name, info] : m_definitions) {
        if (!info->format.isFloat()) continue;
        const CAudioParamConverter& converter = *info->converter();
        std::set<std::string> texts;
        for (int i = 0; i <= kSteps; ++i) {
            const double place = static_cast<double>(i) / kSteps;
            const double value = converter.normalToInternal(*info, 0, place);
            const double normal = converter.internalToNormal(*info, 0, value);
            EXPECT_NEAR(converter.normalToInternal(*info, 0, normal), value, 1e-12 * std::abs(value)) << name;
            if (!converter.isDiscrete()) {
                EXPECT_NEAR(normal, place, 1e-12) << name;
            }
            const std::string first = shown(*info, value);
            texts.insert(first);
            bool ok = false;
            const double typed = converter.parseClamped(*info, 0, first, ok);
            EXPECT_TRUE(ok) << name << " " << first;
            EXPECT_NEAR(display(*info, typed), display(*info, value), lastPlace(first) * 0.5000001) << name;
            std::string withComma = first;
            std::replace(withComma.begin(), withComma.end(), '.', ',');
            EXPECT_EQ(converter.parseClamped(*info, 0, withComma, ok), typed) << name;
        }
        EXPECT_GE(texts.size(), converter.isDiscrete() ? 2U : 100U) << name << " is shown too coarsely";
    }
}

TEST_F(ProductParamsTest, storedFormsAreStable) {
    for (const auto& [name, info] : m_definitions) {
        const auto saved = [](const CAudioParamInfo& of) {
            return savedBytes([&](COutputStream& stream) { return of.save(stream); });
        };
        const Bytes bytes = saved(*info);
        CAudioParamInfo loaded;
        ASSERT_EQ(loadBytes(bytes, [&](CInputStream& stream) { return loaded.load(stream, root()); }), "") << name;
        EXPECT_EQ(saved(loaded), bytes) << name;
        EXPECT_TRUE(loaded.isSameAs(*info)) << name;
    }
}

}  // namespace
}  // namespace brt
