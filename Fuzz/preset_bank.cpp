// SPDX-License-Identifier: LicenseRef-Halyard
// Banks in their stored form.
#include "Fuzz/PresetForms.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace brt;
    CAudioPresetBank bank;
    bank.setName("Before");
    bank.presets().append(new CAudioPreset("abcd:Before"));
    fuzz::useStored(bank, data, size);
    return 0;
}
