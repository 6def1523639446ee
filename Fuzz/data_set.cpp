// SPDX-License-Identifier: LicenseRef-Halyard
// Data sets: the first byte chooses the storage's format, the set follows.
#include "Fuzz/AudioForms.h"

namespace brt::fuzz {

void useSet(const std::uint8_t* bytes, int size, const CAudioParamFormat& format) {
    CAudioParamStorage storage;
    storage.setFormat(format);
    const Bytes before = saved(storage);
    CMemoryReader reader(bytes, size);
    if (discardError(storage.loadDataSet(reader, format))) {
        require(saved(storage) == before, "a failure changes nothing");
        return;
    }
    readAll(storage);
    const Bytes written = saved(storage);
    CAudioParamStorage again;
    CMemoryReader second(written.data(), static_cast<int>(written.size()));
    require(!discardError(again.loadDataSet(second, format)), "what was saved can be loaded");
    require(second.getBytesLeft() == 0, "a set is read to its end");
    require(saved(again) == written, "a data set is stable");
    again.assign(storage);
    require(saved(again) == written, "a copy is the same");
}

}  // namespace brt::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace brt;
    if (size == 0) return 0;
    const CAudioParamFormat formats[] = {
        {},
        {.elementSize = 2, .isSingleGroup = true},
        {.dataType = EAudioDataType::kString},
        {.dataType = EAudioDataType::kRaw, .isSingleElement = true},
    };
    fuzz::useSet(data + 1, static_cast<int>(size) - 1, formats[data[0] % std::size(formats)]);
    return 0;
}
