// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CStringView.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace brt {

namespace {

// Calls `visit` with the view's own kind of string_view.
template <class Visit>
auto inItsForm(CStringView text, Visit visit) {
    return text.isWide() ? visit(text.wide()) : visit(text.narrow());
}

template <class A, class B>
int compareUnits(const A* a, const B* b, std::size_t count) {
    const auto unsignedUnit = []<class Unit>(Unit unit) { return static_cast<std::make_unsigned_t<Unit>>(unit); };
    for (std::size_t i = 0; i < count; ++i) {
        const int difference = int{unsignedUnit(a[i])} - int{unsignedUnit(b[i])};
        if (difference != 0) return difference;
    }
    return 0;
}

int indexOf(std::size_t position) { return position == std::string_view::npos ? -1 : static_cast<int>(position); }

}  // namespace

int CStringView::compare(CStringView other) const noexcept {
    const auto common = static_cast<std::size_t>(std::min(m_length, other.m_length));
    int order = 0;
    if (common > 0 && !m_isWide && !other.m_isWide)
        order = std::memcmp(m_data8, other.m_data8, common);
    else
        order = inItsForm(*this, [&](auto a) {
            return inItsForm(other, [&](auto b) { return compareUnits(a.data(), b.data(), common); });
        });
    return order != 0 ? order : int{m_length > other.m_length} - int{m_length < other.m_length};
}

int CStringView::find(char16_t unit, int start) const noexcept {
    const auto from = static_cast<std::size_t>(std::max(start, 0));
    if (m_isWide) return indexOf(wide().find(unit, from));
    return unit > 255 ? -1 : indexOf(narrow().find(static_cast<char>(unit), from));
}

int CStringView::findLast(char16_t unit) const noexcept {
    if (m_isWide) return indexOf(wide().rfind(unit));
    return unit > 255 ? -1 : indexOf(narrow().rfind(static_cast<char>(unit)));
}

int CStringView::find(CStringView part, int start) const noexcept {
    for (int i = std::max(start, 0); i <= m_length - part.m_length; ++i) {
        if (slice(i, part.m_length).equals(part)) return i;
    }
    return -1;
}

CStringView CStringView::slice(int start, int count) const noexcept {
    if (start < 0 || start >= m_length) return {};
    const auto from = static_cast<std::size_t>(start);
    const auto units = count < 0 ? std::string_view::npos : static_cast<std::size_t>(count);
    return inItsForm(*this, [&](auto text) { return CStringView(text.substr(from, units)); });
}

CStringView CStringView::trimmed() const noexcept {
    int start = 0;
    int end = m_length;
    while (start < end && (*this)[start] <= u' ') ++start;
    while (start < end && (*this)[end - 1] <= u' ') --end;
    return slice(start, end - start);
}

}  // namespace brt
