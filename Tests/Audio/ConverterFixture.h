// SPDX-License-Identifier: LicenseRef-Halyard
// A shared tree with the converters of the product, and some that it hasn't, and definitions that use them.
#pragma once

#include <array>
#include <cmath>
#include <initializer_list>
#include <utility>

#include "Audio/AudioTags.h"
#include "Audio/CAudioParamConverter.h"
#include "Audio/CAudioParamDef.h"
#include "Core/TreeFixture.h"

namespace brt {

using Attributes = std::initializer_list<std::pair<const char*, const char*>>;

class ConverterFixture : public TreeFixture {
protected:
    void SetUp() override {
        TreeFixture::SetUp();
        addResource("Converters.xml", document([](CDocumentWriter& writer) {
                        writer.beginElement("core:object", "cvt");
                        writeConverters(writer);
                        writer.endElement();
                    }));
        start("Converters.xml", audioTags());
    }

    // A converter of its own; what kept it from being made.
    std::string makeConverter(const char* tag, Attributes attributes) {
        CObject* child = nullptr;
        return make(child, tag, attributes);
    }

    // A definition that says so, with "element-size" 1 if that isn't said; null with `m_failure` if that fails.
    const CAudioParamInfo* define(Attributes attributes) {
        CObject* child = nullptr;
        m_failure = make(child, "audio:param", attributes);
        return m_failure.empty() ? &static_cast<CAudioParamDef*>(child)->info() : nullptr;
    }
    std::string failureOf(Attributes attributes) { return define(attributes), m_failure; }

    // A parameter with one number.
    const CAudioParamInfo& ranged(const char* converter, const char* minimum, const char* maximum) {
        const std::string path = std::string("shared::cvt.") + converter;
        const CAudioParamInfo* const made = define(
            {{"converter", path.c_str()}, {"min-values", minimum}, {"max-values", maximum}, {"def-values", minimum}});
        EXPECT_EQ(m_failure, "");
        return *made;
    }

    static std::string shown(const CAudioParamInfo& info, double value, EAudioTextMode mode) {
        CString text = "?";
        info.converter()->format(text, info, 0, value, info.defaults.data(), mode);
        return text.toUtf8();
    }

    using Texts = std::array<std::string, 4>;
    // In the modes plain, short, medium and precise.
    static Texts shown(const CAudioParamInfo& info, double value) {
        return {shown(info, value, EAudioTextMode::kPlain), shown(info, value, EAudioTextMode::kShort),
                shown(info, value, EAudioTextMode::kMedium), shown(info, value, EAudioTextMode::kPrecise)};
    }

    std::string m_failure;

private:
    static void writeConverters(CDocumentWriter& writer) {
        const auto add = [&](const char* tag, const char* name, Attributes attributes) {
            writer.beginElement(tag, name);
            for (const auto& [key, value] : attributes) writer.attribute(key, value);
            writer.endElement();
        };
        const Attributes::value_type straight = {"scale-power", "1.0"};
        const Attributes::value_type whole = {"scale-threshold", "-1.0"};
        add("audio:cvt-gain", "gain", {straight, whole, {"decimals", "1"}});
        add("audio:cvt-gain", "gain-bent", {{"scale-power", "2"}, whole});
        add("audio:cvt-gain", "gain-parted", {straight, {"scale-threshold", "0.75"}});
        add("audio:cvt-gain", "gain-both", {{"scale-power", "0.5"}, {"scale-threshold", "0.25"}});
        add("audio:cvt-freq", "freq", {straight, whole});
        add("audio:cvt-text", "text", {});
        add("audio:cvt-real", "real", {{"decimals", "2"}});
        add("audio:cvt-percent", "percent", {});
        add("audio:cvt-time", "time", {{"scale", "0.001"}});
        add("audio:cvt-time", "time-sec", {{"scale", "1.0"}});
        add("audio:cvt-time", "time-log", {{"scale", "0.001"}, {"is-log", "true"}, {"is-precise", "true"}});
        add("audio:cvt-time", "time-exact", {{"scale", "0.001"}, {"is-exact", "true"}});
        add("audio:cvt-enum", "enum", {});
        add("audio:cvt-enum", "enum-enable", {{"state-names", "Off;On"}});
    }

    std::string make(CObject*& child, const char* tag, Attributes attributes) {
        CAttrMap map;
        if (std::string_view(tag) == "audio:param") map.findOrInsert("element-size").setText("1");
        for (const auto& [key, value] : attributes) map.findOrInsert(key).setText(value);
        return messageOf(root().createChild(child, tag, "made", kTemplateOptional, nullptr, &map));
    }
};

}  // namespace brt
