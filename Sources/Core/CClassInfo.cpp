// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CClassInfo.h"

namespace brt {
namespace {

// Index of the first row whose name isn't below `name`.
template <class Row>
int lowerBound(const CSmallArray<const Row*>& rows, CStringView name) noexcept {
    int low = 0;
    int high = rows.count();
    while (low < high) {
        const int middle = (low + high) / 2;
        if (rows[middle]->name.compare(name) < 0)
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

template <class Row>
const Row* findRow(const CSmallArray<const Row*>& rows, CStringView name) noexcept {
    const int index = lowerBound(rows, name);
    return index < rows.count() && rows[index]->name == name ? rows[index] : nullptr;
}

CStringView withoutNumber(CStringView name) noexcept {
    int length = name.length();
    while (length > 0 && name[length - 1] >= u'0' && name[length - 1] <= u'9') --length;
    return name.slice(0, length);
}

}  // namespace

template <class Row>
void CClassInfo::add(CSmallArray<const Row*>& rows, const Row* row) {
    const int index = lowerBound(rows, row->name);
    if (index < rows.count() && rows[index]->name == row->name)
        rows[index] = row;
    else
        rows.insertAt(index, row);
}

template void CClassInfo::add(CSmallArray<const CAttrInfo*>& rows, const CAttrInfo* row);
template void CClassInfo::add(CSmallArray<const CEventInfo*>& rows, const CEventInfo* row);

const CAttrInfo* CClassInfo::findAttribute(CStringView name) const noexcept {
    if (const CAttrInfo* const row = findRow(m_attributes, name)) return row;
    const CStringView stem = withoutNumber(name);
    if (stem.length() == name.length()) return nullptr;
    const CAttrInfo* const row = findRow(m_attributes, stem);
    return row && row->isNumbered ? row : nullptr;
}

const CEventInfo* CClassInfo::findEvent(CStringView name) const noexcept { return findRow(m_events, name); }

}  // namespace brt
