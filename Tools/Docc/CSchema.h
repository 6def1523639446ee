// SPDX-License-Identifier: LicenseRef-Halyard
// What the classes of all floors declare: the tags, and what their elements may hold. It is the registry that the
// product starts with, so a class's own table is all there is to keep right.
// Owner: the run. Threads: one at a time.
#pragma once

#include <memory>

#include "Core/CCreatorRegistry.h"

namespace brt {

class CSchema {
public:
    // Throws std::runtime_error if two classes claim one tag.
    explicit CSchema(std::span<const std::span<const CCreatorRow>> tables);
    ~CSchema();
    CSchema(const CSchema&) = delete;
    CSchema& operator=(const CSchema&) = delete;

    // Null if no class stands behind the tag.
    const CClassInfo* find(CStringView tag) const noexcept;
    const CCreatorRegistry& registry() const noexcept { return m_registry; }

    // Whether the objects behind a tag pass a row's test. Asks an object of the class, which is made once.
    bool isOfClass(CStringView tag, const CAttrInfo& row);

private:
    CCreatorRegistry m_registry;
    COrderedMap<CString, CObject*> m_samples;  // by tag, owned
};

}  // namespace brt
