// SPDX-License-Identifier: LicenseRef-Halyard
// What the targets for stored presets and banks share.
#pragma once

#include "Audio/CAudioPresetBank.h"
#include "Fuzz/AudioForms.h"

namespace brt::fuzz {

// The bytes after one more reading and writing. Writing drops surrogates, which may change the order of keys and make
// one of two: what was read from strangers is stable from its second writing on.
template <class Load>
Bytes rewritten(const Bytes& written, Load load) {
    CMemoryReader reader(written.data(), static_cast<int>(written.size()));
    const Bytes bytes = load(reader);
    require(reader.getBytesLeft() == 0, "a stored form is read to its end");
    return bytes;
}

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
    const auto reload = [&](CInputStream& stream) {
        Stored again;
        require(!discardError(again.load(stream)), "what was saved can be loaded");
        return save(again);
    };
    const Bytes second = rewritten(written, reload);
    require(second.size() <= written.size() && rewritten(second, reload) == second, "a stored form is stable");
    Stored copy;
    copy.assign(stored);
    stored.assign(copy);
    require(save(copy) == written && save(stored) == written, "a copy is the same");
}

}  // namespace brt::fuzz
