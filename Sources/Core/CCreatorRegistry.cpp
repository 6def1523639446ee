// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CCreatorRegistry.h"

#include "Core/CError.h"

namespace brt {

CCreatorRegistry::CCreatorRegistry() { CObject::describeBag(m_plainObject); }

CError* CCreatorRegistry::registerCreators(std::span<const CCreatorRow> table) {
    for (const CCreatorRow& row : table) {
        bool isNew = false;
        CRecord& record = m_records.findOrInsert(row.tag, isNew);
        if (!isNew)
            return makeError(nullptr, __FILE__, __LINE__, "",
                             "@brtstr_CObject_registerCreator Creator for '%1' has already been registered.", row.tag);
        record.create = row.create;
        row.describe(record.info);
    }
    return nullptr;
}

}  // namespace brt
