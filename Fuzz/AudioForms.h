// SPDX-License-Identifier: LicenseRef-Halyard
// What the targets for stored forms of parameters share.
#pragma once

#include "Audio/CAudioParamStorage.h"
#include "Audio/CAudioParamUpdate.h"
#include "Core/CError.h"
#include "Core/CMemoryReader.h"
#include "Fuzz/FuzzTarget.h"
#include "Tests/Core/StreamTestTools.h"

namespace brt::fuzz {

template <class Save>
Bytes savedBytes(Save save) {
    CWriteSeqBuffer chain(1024);
    require(!discardError(save(chain)), "what was loaded can be saved");
    return contentOf(chain);
}

inline Bytes saved(const CAudioParamStorage& storage) {
    return savedBytes([&](COutputStream& stream) { return storage.saveDataSet(stream, -1); });
}

// Everything that can be asked of a storage, at every place near its edges.
inline void readAll(const CAudioParamStorage& storage) {
    const CAudioParamFormat& format = storage.format();
    require(storage.isValid() && storage.defaultCount() > 0, "what was loaded has defaults");
    for (int group = -1; group <= storage.groupCount(); ++group) {
        for (int element = -1; element <= storage.elementCount(group); ++element) {
            const double value = storage.value(group, element, 0.0);
            require(format.isFloat() || storage.data().find(value) != nullptr, "each value has its item");
        }
    }
}

}  // namespace brt::fuzz
