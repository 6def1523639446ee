// SPDX-License-Identifier: LicenseRef-Halyard
// Definitions of parameters in their stored form, which windows read; then what windows ask of them.
#include "Audio/AudioTags.h"
#include "Audio/CAudioParamConverter.h"
#include "Audio/CAudioParamInfo.h"
#include "Core/CApplication.h"
#include "Core/CoreTags.h"
#include "Fuzz/AudioForms.h"

#include <limits>

namespace brt::fuzz {

// Converters of each kind, at short paths: "real", "gain", ...
CObject& converters() {
    static CObject* const s_root = [] {
        const std::span<const CCreatorRow> tables[] = {coreTags(), audioTags()};
        CApplication::start({tables, nullptr, ""});
        CObject* root = nullptr;
        require(!discardError(CApplication::initRootObject(root, "")), "a root is made");
        for (const char* const kind : {"enum", "freq", "gain", "percent", "real", "text", "time"}) {
            CAttrMap attributes;
            attributes.findOrInsert("scale").setText("0.001");
            attributes.findOrInsert("scale-power").setText("2");
            attributes.findOrInsert("scale-threshold").setText("0.5");
            CObject* child = nullptr;
            const CString tag = CString("audio:cvt-").append(kind);
            require(!discardError(root->createChild(child, tag, kind, kTemplateOptional, nullptr, &attributes)), kind);
        }
        return root;
    }();
    return *s_root;
}

Bytes saved(const CAudioParamInfo& info) {
    return savedBytes([&](COutputStream& stream) { return info.save(stream); });
}

void useValues(const CAudioParamInfo& info, int sub, double value) {
    const CAudioParamConverter& converter = *info.converters[sub];
    const double low = std::min(info.minimum(sub), info.maximum(sub));
    const double high = std::max(info.minimum(sub), info.maximum(sub));
    const double limited = info.limit(value, sub);
    require(limited >= low && limited <= high, "a limited value is within the range");
    converter.normalToDisplay(info, sub, converter.internalToNormal(info, sub, value));
    converter.displayToNormal(info, sub, converter.normalToInternal(info, sub, value));
    for (const auto mode :
         {EAudioTextMode::kPlain, EAudioTextMode::kShort, EAudioTextMode::kMedium, EAudioTextMode::kPrecise}) {
        CString text;
        bool ok = false;
        converter.format(text, info, sub, value, info.defaults.data(), mode);
        const double typed = converter.parseClamped(info, sub, text, ok);
        const bool isText = !info.format.isFloat() || typed == 0.0;
        require(isText || (typed >= low && typed <= high), "what is typed is within the range");
        converter.parseRaw(info, sub, text, ok);
    }
}

}  // namespace brt::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace brt;
    const CObject& owner = fuzz::converters();
    CMemoryReader reader(data, static_cast<int>(size));
    CAudioParamInfo info;
    if (discardError(info.load(reader, owner))) return 0;
    const Bytes written = fuzz::saved(info);
    CAudioParamInfo again;
    CMemoryReader second(written.data(), static_cast<int>(written.size()));
    fuzz::require(!discardError(again.load(second, owner)), "what was saved can be loaded");
    fuzz::require(fuzz::saved(again) == written, "a stored definition is stable");
    // Damaged text can decode to half of a surrogate pair, which is dropped when it is written.
    const bool isNameWhole = CString::fromUtf8(info.name.toUtf8()) == info.name;
    fuzz::require(again.isSameAs(info) == isNameWhole, "both are the same");
    for (int sub = 0; sub < info.format.elementSize; ++sub)
        for (const double value : {info.minimum(sub), info.maximum(sub), 0.5, -1e300,
                                   std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()})
            fuzz::useValues(info, sub, value);
    info.defaults.clampAll(info);
    fuzz::readAll(info.defaults);
    return 0;
}
