// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CResourceMap.h"

#include "Core/LittleEndian.h"

namespace brt {

void CResourceMap::add(const CResourceRow* table) {
    if (!table) return;
    for (const CResourceRow* row = table; row->data; ++row) {
        CResource& resource = m_resources.findOrInsert(row->name);
        resource.bytes = static_cast<const char*>(row->data) + 4;
        resource.size = static_cast<int>(loadLittleEndian32(row->data));
    }
}

}  // namespace brt
