// SPDX-License-Identifier: LicenseRef-Halyard
// Changes as windows send them, one after another, applied to one parameter.
#include <algorithm>

#include "Fuzz/AudioForms.h"

namespace brt::fuzz {

Bytes saved(const CAudioParamUpdateCopy& copy) {
    return savedBytes([&](COutputStream& stream) { return copy.save(stream); });
}

}  // namespace brt::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace brt;
    CMemoryReader reader(data, static_cast<int>(size));
    CAudioParamStorage copied;
    CAudioParamStorage moved;
    while (reader.getBytesLeft() > 0) {
        CAudioParamUpdateCopy change;
        if (discardError(change.load(reader))) {
            fuzz::require(change.update().elementCount == 0, "a failure leaves an empty change");
            return 0;
        }
        const CAudioParamUpdate& update = change.update();
        fuzz::require(update.group < kAudioGroupLimit && update.endElement() <= kAudioElementLimit,
                      "within the limits");
        const Bytes written = fuzz::saved(CAudioParamUpdateCopy(update));
        CMemoryReader again(written.data(), static_cast<int>(written.size()));
        CAudioParamUpdateCopy second;
        fuzz::require(!discardError(second.load(again)), "what was saved can be loaded");
        fuzz::require(fuzz::saved(second) == written, "a sent change is stable");

        // The first change brings the format, those of another one must leave no trace.
        if (!copied.isValid()) {
            copied.setFormat(update.format);
            moved.setFormat(update.format);
        }
        copied.apply(update);
        CAudioParamUpdateCopy queued(update);  // as on the way to the audio thread: an item for each value
        moved.applyMoving(queued);
        fuzz::readAll(copied);
        fuzz::require(fuzz::saved(copied) == fuzz::saved(moved), "moving items and cloning them come to the same");
        fuzz::require(copied.data().count() == moved.data().count(), "no item is left over");
    }
    return 0;
}
