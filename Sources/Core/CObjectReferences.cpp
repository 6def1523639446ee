// SPDX-License-Identifier: LicenseRef-Halyard
// References in the texts of attributes. They are expanded from the inside, the last one first; what one gives is
// looked at again, so that a value may itself refer. Text that a user or a host gave is taken as it is.
#include "Core/CObject.h"
#include "Core/Log.h"

#include <algorithm>
#include <string>

namespace brt {
namespace {

// A text that is being worked on. Braces out of raw text are marked above the 16 bits of a unit, so that they are never
// taken for those of a reference.
using Units = std::u32string;
using UnitsView = std::u32string_view;
constexpr char32_t kRawMark = 0x10000;

Units unitsOf(CStringView text, bool isRaw) {
    Units units = text.isWide() ? Units(text.wide().begin(), text.wide().end()) : Units();
    if (!text.isWide())
        for (const char byte : text.narrow()) units.push_back(static_cast<unsigned char>(byte));
    if (isRaw)
        for (char32_t& unit : units)
            if (unit == U'{' || unit == U'}') unit |= kRawMark;
    return units;
}

CString textOf(UnitsView units) {
    std::u16string text;
    text.reserve(units.size());
    char16_t all = 0;
    for (const char32_t unit : units) {
        text.push_back(static_cast<char16_t>(unit));
        all |= text.back();
    }
    return all > 0xFF ? CString(text) : CString(std::string(text.begin(), text.end()));
}

// The inside of a reference: "[@|*]EXPRESSION[?DEFAULT]".
Units valueOf(CObject& object, UnitsView reference, CStringView attrName) {
    const std::size_t mark = reference.find(U'?');
    const CString expression = textOf(reference.substr(0, mark));
    if (expression.startsWith("*")) {
        const CAttrValue* const bound = object.bindAttribute(expression.slice(1), attrName);
        return bound ? unitsOf(bound->asString(), bound->isRaw()) : Units();
    }
    const bool ownOnly = expression.startsWith("@");
    const CAttrValue* const value = object.resolveReference(expression.slice(ownOnly ? 1 : 0), attrName, ownOnly);
    if (value) return unitsOf(value->asString(), value->isRaw());
    return mark != UnitsView::npos ? Units(reference.substr(mark + 1)) : Units();
}

}  // namespace

void CObject::expandReferences(CString& result, bool& isRaw, CStringView name, CStringView text) {
    Units units = unitsOf(text, false);
    std::size_t end = units.size();  // no reference begins at or behind it
    for (int expansions = 0; end > 0; ++expansions) {
        const std::size_t open = units.rfind(U'{', end - 1);
        const std::size_t close = open != Units::npos ? units.find(U'}', open) : Units::npos;
        if (close == Units::npos) break;
        const std::size_t length = close + 1 - open;
        const bool isTooOften = expansions == kMaxExpansions;
        const Units value = isTooOften ? Units() : valueOf(*this, UnitsView(units).substr(open + 1, length - 2), name);
        if (isTooOften || (value.size() > length && units.size() - length + value.size() > kMaxExpandedUnits)) {
            logLine("References in attribute '%s' were followed no further: %i done, %i characters. // %s", name,
                    expansions, static_cast<std::int64_t>(units.size()), getFullName());
            break;
        }
        units.replace(open, length, value);
        end = open + value.size();
    }
    result = textOf(units);
    isRaw = std::ranges::any_of(units, [](char32_t unit) { return unit >= kRawMark; });
}

const CAttrValue* CObject::resolveReference(CStringView expression, CStringView attrName, bool ownOnly) const {
    const CObject* object = this;
    CStringView wanted = expression.isEmpty() ? attrName : expression;
    if (wanted.startsWith("/")) {
        const int blank = wanted.find(u' ');
        object = findObject(blank < 0 ? wanted.slice(1) : wanted.slice(1, blank - 1));
        wanted = blank < 0 ? attrName : wanted.slice(blank + 1);
    }
    for (; object; object = ownOnly ? nullptr : object->m_parent)
        if (const CAttrValue* const value = object->findAttr(wanted)) return value;
    return nullptr;
}

}  // namespace brt
