// SPDX-License-Identifier: LicenseRef-Halyard
// How objects find each other.
#include "Core/CApplication.h"
#include "Core/CObject.h"

#include <limits>

namespace brt {
namespace {

constexpr CStringView kSharedPrefix = "shared::";

// Decimal digits and nothing else; false also where the number leaves 31 bits.
bool parseDigits(CStringView text, int& number) noexcept {
    std::int64_t value = 0;
    for (int i = 0; i < text.length(); ++i) {
        if (text[i] < u'0' || text[i] > u'9') return false;
        value = 10 * value + (text[i] - u'0');
        if (value > std::numeric_limits<int>::max()) return false;
    }
    number = static_cast<int>(value);
    return !text.isEmpty();
}

}  // namespace

// Follows a path as far as it leads. Sets `reached` to the last object on the way, null where there is not even a
// start, and returns where the first step begins that leads nowhere; the path's length if there is none.
int CObject::walkPath(CStringView path, CObject*& reached) const {
    int start = 0;
    if (path.startsWith(".") || path.startsWith("^")) {
        reached = const_cast<CObject*>(this);
    } else if (path.startsWith(kSharedPrefix)) {
        reached = CApplication::sharedObject();
        start = kSharedPrefix.length();
    } else {
        reached = m_root;
    }
    if (!reached) return 0;
    for (int at = start; at <= path.length(); ++at) {
        const char16_t unit = at < path.length() ? path[at] : u'.';  // the end closes a step as a point does
        if (unit == u'/') {
            reached = m_root;
        } else if (unit == u'^') {
            if (!reached->m_parent) return at;
            reached = reached->m_parent;
        } else if (unit != u'.') {
            continue;
        } else if (at > start) {
            CObject* const child = reached->findChild(path.slice(start, at - start));
            if (!child) return start;
            reached = child;
        }
        start = at + 1;
    }
    return path.length();
}

CObject* CObject::findObject(CStringView path) const {
    if (path.isEmpty()) return nullptr;
    CObject* reached = nullptr;
    return walkPath(path, reached) == path.length() ? reached : nullptr;
}

CObject* CObject::findChild(CStringView step) const {
    const int hash = step.find(u'#');
    const NamesakeMap* const namesakes = m_names.find(hash < 0 ? step : step.slice(0, hash));
    if (!namesakes) return nullptr;
    if (hash < 0) return namesakes->begin()->value;

    const CStringView suffix = step.slice(hash + 1);
    if (suffix.isEmpty()) return namesakes->last()->value;
    const char16_t sign = suffix[0];
    const bool isCounted = sign == u'+' || sign == u'-';
    int number = 0;
    if (!parseDigits(isCounted ? suffix.slice(1) : suffix, number)) return nullptr;
    if (!isCounted) {
        CObject* const* const child = namesakes->find(number);
        return child ? *child : nullptr;
    }
    if (number >= namesakes->count()) return nullptr;
    auto place = sign == u'+' ? namesakes->begin() : namesakes->last();
    for (; number > 0; --number) sign == u'+' ? ++place : --place;
    return place->value;
}

CString CObject::getObjectPathName(CStringView path) const {
    if (path.isEmpty()) return {};
    CObject* reached = nullptr;
    const int resolved = walkPath(path, reached);
    if (!reached) return path;

    const CStringView rest = path.slice(resolved);
    CString name;
    if (path.startsWith(kSharedPrefix)) name += kSharedPrefix;
    name += reached->getFullName();
    if (!rest.isEmpty() && !reached->getFullName().isEmpty() && rest[0] != u'^') name += ".";
    name += rest;
    return name;
}

CError* CObject::findObjectOfClass(CObject*& object, CStringView path, TypeTest test) const {
    object = nullptr;
    CObject* const found = findObject(path);
    if (!found)
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CObject_findObjectChecked_FindError Unable to find object '%1' ('%2')", path,
                         getObjectPathName(path));
    if (!test(found))
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CObject_findObjectChecked_CastError Incompatible type of object '%1' ('%2')", path,
                         getObjectPathName(path));
    object = found;
    return nullptr;
}

CError* CObject::findObjectOfClassByAttr(CStringView attrName, CObject*& object, TypeTest test) const {
    object = nullptr;
    const CStringView path = getAttrString(attrName);
    if (path.isEmpty())
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CObject_findObjectByAttr_AttrEmpty Object name attribute '%1' cannot be empty.",
                         attrName);
    CObject* const found = findObject(path);
    if (!found)
        return makeError(
            nullptr, __FILE__, __LINE__, getFullName(),
            "@brtstr_CObject_findObjectByAttr_FindError Name attribute '%1' refers to a non-existent object "
            "'%2' ('%3')",
            attrName, path, getObjectPathName(path));
    if (!test(found))
        return makeError(
            nullptr, __FILE__, __LINE__, getFullName(),
            "@brtstr_CObject_findObjectByAttr_CastError Name attribute '%1' refers to object '%2' ('%3') of "
            "incompatible type.",
            attrName, path, getObjectPathName(path));
    object = found;
    return nullptr;
}

}  // namespace brt
