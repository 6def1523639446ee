// SPDX-License-Identifier: LicenseRef-Halyard
// Lists of banks, as the settings keep them.
#include "Fuzz/PresetForms.h"

namespace brt::fuzz {

Bytes saved(const COwnedArray<CAudioPresetBank>& banks) {
    return savedBytes([&](COutputStream& stream) { return CAudioPresetBank::saveList(stream, banks); });
}

}  // namespace brt::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace brt;
    COwnedArray<CAudioPresetBank> banks;
    banks.append(new CAudioPresetBank);
    CMemoryReader reader(data, static_cast<int>(size));
    if (discardError(CAudioPresetBank::loadList(reader, banks))) {
        fuzz::require(banks.isEmpty(), "a failure leaves an empty list");
        return 0;
    }
    const Bytes written = fuzz::saved(banks);
    const auto reload = [](CInputStream& stream) {
        COwnedArray<CAudioPresetBank> again;
        fuzz::require(!discardError(CAudioPresetBank::loadList(stream, again)), "what was saved can be loaded");
        return fuzz::saved(again);
    };
    const Bytes second = fuzz::rewritten(written, reload);
    fuzz::require(fuzz::rewritten(second, reload) == second, "a list is stable");
    return 0;
}
