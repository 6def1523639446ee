// SPDX-License-Identifier: LicenseRef-Halyard
// Presets in their stored form.
#include "Fuzz/PresetForms.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace brt;
    CAudioPreset preset("abcd:Before");
    preset.entries().findOrInsert("key").assign("bytes", 5);
    fuzz::useStored(preset, data, size);
    return 0;
}
