// SPDX-License-Identifier: LicenseRef-Halyard
// The files that are linked into the program, by name: documents, fonts, pictures, presets. A name is a key and nothing
// more, also where it looks like a path.
// Owner: the application. Threads: filled during start-up, only read afterwards. The bytes are part of the program.
#pragma once

#include "Core/COrderedMap.h"
#include "Core/CString.h"

namespace brt {

// A row of the table that the build makes. The data begins with its size in 4 bytes, lowest first; a row without data
// ends the table.
struct CResourceRow {
    const void* data;
    const char* name;
};

struct CResource {
    const void* bytes = nullptr;
    int size = 0;
};

class CResourceMap {
public:
    // [init] Of two rows with one name the later counts. Null: no table.
    void add(const CResourceRow* table);

    // [any] Null if there is none.
    const CResource* find(CStringView name) const noexcept { return m_resources.find(name); }
    const COrderedMap<CString, CResource>& resources() const noexcept { return m_resources; }

private:
    COrderedMap<CString, CResource> m_resources;
};

}  // namespace brt
