// SPDX-License-Identifier: LicenseRef-Halyard
// What the targets for stored presets and banks share.
#pragma once

#include "Audio/CAudioPresetBank.h"
#include "Fuzz/AudioForms.h"

namespace brt::fuzz {

// Reads the bytes into an object that holds something already. `Stored` is CAudioPreset or CAudioPresetBank.
template <class Stored>
void useStored(Stored& stored, const std::uint8_t* bytes, std::size_t size) {
    const auto save = [](const Stored& object) {
        return savedBytes([&](COutputStream& stream) { return object.save(stream); });
    };
    const Bytes before = save(stored);
    CMemoryReader reader(bytes, static_cast<int>(size));
    if (discardError(stored.load(reader))) {
        require(save(stored) == before, "a failure changes nothing");
        return;
    }
    const Bytes written = save(stored);
    Stored again;
    CMemoryReader second(written.data(), static_cast<int>(written.size()));
    require(!discardError(again.load(second)), "what was saved can be loaded");
    require(second.getBytesLeft() == 0, "a stored form is read to its end");
    require(save(again) == written, "a stored form is stable");
    Stored copy;
    copy.assign(stored);
    stored.assign(copy);
    require(save(copy) == written && save(stored) == written, "a copy is the same");
}

}  // namespace brt::fuzz
