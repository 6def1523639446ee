// SPDX-License-Identifier: LicenseRef-Halyard
// Which class stands behind each document tag, and what that class says about itself. Each floor has one table:
//
//     const CCreatorRow kUiTags[] = {
//         creatorRow<CKnob>("ui:knob"),
//         creatorRow<CReadOut>("ui:readout"),
//     };
//
// Owner: the application. Threads: filled during start-up, only read afterwards.
#pragma once

#include <span>

#include "Core/CClassInfo.h"
#include "Core/CObject.h"

namespace brt {

struct CCreatorRow {
    const char* tag;
    CObject* (*create)();
    void (*describe)(CClassInfo& info);
};

template <class T>
constexpr CCreatorRow creatorRow(const char* tag) {
    return {tag, []() -> CObject* { return new T; }, &T::describeClass};
}

// A tag of plain objects that hold any attributes; their parents know what to read.
constexpr CCreatorRow bagRow(const char* tag) {
    return {tag, []() -> CObject* { return new CObject; }, &CObject::describeBag};
}

class CCreatorRegistry {
public:
    struct CRecord {
        CObject* (*create)() = nullptr;
        CClassInfo info;
    };

    CCreatorRegistry();

    // [init] A tag that stands here already ends the table with an error.
    [[nodiscard]] CError* registerCreators(std::span<const CCreatorRow> table);

    // [any] Null if no class stands behind the tag.
    const CRecord* find(CStringView tag) const noexcept { return m_records.find(tag); }
    // [any] In ascending order.
    const COrderedMap<CString, CRecord>& records() const noexcept { return m_records; }
    // [any] What plain objects of unknown tags are.
    const CClassInfo& plainObject() const noexcept { return m_plainObject; }

private:
    COrderedMap<CString, CRecord> m_records;
    CClassInfo m_plainObject;
};

}  // namespace brt
