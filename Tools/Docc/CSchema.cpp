// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Docc/CSchema.h"

#include "Tools/Docc/CElement.h"
#include "Tools/Docc/ThrowError.h"

namespace brt {

CSchema::CSchema(std::span<const std::span<const CCreatorRow>> tables) {
    for (const std::span<const CCreatorRow> table : tables) throwIf(m_registry.registerCreators(table));
}

CSchema::~CSchema() {
    for (const auto& [tag, sample] : m_samples) CObject::release(sample);
}

const CClassInfo* CSchema::find(CStringView tag) const noexcept {
    if (const CCreatorRegistry::CRecord* const record = m_registry.find(tag)) return &record->info;
    const bool isPlain = tag == CElement::kRootTag || tag == CElement::kContentTag || tag == CElement::kTemplateTag;
    return isPlain ? &m_registry.plainObject() : nullptr;
}

bool CSchema::isOfClass(CStringView tag, const CAttrInfo& row) {
    if (!row.isOfClass) return true;
    CObject*& sample = m_samples.findOrInsert(tag);
    if (!sample) {
        const CCreatorRegistry::CRecord* const record = m_registry.find(tag);
        sample = record ? record->create() : new CObject;
    }
    return row.isOfClass(sample);
}

}  // namespace brt
