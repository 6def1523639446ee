// SPDX-License-Identifier: LicenseRef-Halyard
// Attributes that follow attributes of other objects.
#include "Core/CObject.h"
#include "Core/CObjectLinks.h"
#include "Core/CObjectWatch.h"
#include "Core/CStringList.h"
#include "Core/Log.h"

namespace brt {

void CObjectLinks::addFollower(CStringView name, CObject& object, CStringView attrName) {
    CFollowedAttr& attr = followed.findOrInsert(name);
    for (const auto& [key, follower] : attr.followers)
        if (follower.object == &object && follower.attrName == attrName) return;
    CFollower& follower = attr.followers.findOrInsert(CFollowedAttr::keyOf(object.id(), ++attr.lastOrder));
    follower.object = &object;
    follower.attrName = attrName;
}

void CObjectLinks::removeFollower(const CObject& object) {
    for (auto& [name, attr] : followed)
        for (auto place = attr.followers.begin(); place;)
            place = place->value.object == &object ? attr.followers.erase(place) : ++place;
}

// "/PATH", or the name of a child of this object or of the nearest above it that has one of that name.
CObject* CObject::findSource(CStringView expression) const {
    if (expression.startsWith("/")) return findObject(expression.slice(1));
    for (const CObject* object = this; object; object = object->m_parent)
        if (CObject* const child = object->findChild(expression)) return child;
    return nullptr;
}

const CAttrValue* CObject::bindAttribute(CStringView expression, CStringView attrName) {
    CStringList words;
    CString(expression).split(words, u' ', true, true);
    if (words.count() < 2) return nullptr;
    CObject* const source = findSource(words[0]);
    if (!source || source->m_isReadOnly || source == this) return nullptr;
    const CString& name = words[1];
    source->links().addFollower(name, *this, attrName);
    links().sources.insert(source);
    // A colour scheme is passed on when it changes; until then each follower has its own.
    return name == CStringView("scheme") ? nullptr : source->findAttr(name);
}

// The value has been expanded where it comes from: braces in it now are plain characters.
CError* CObject::onSetAttrEvent(CStringView, CStringView name, const CAttrValue& value) {
    return value.type() == CAttrValue::EType::kString ? setAttrRaw(name, value.asString(), kImmediate)
                                                      : setAttrValue(name, value, kImmediate);
}

CError* CObject::notifyBindings(CStringView name, const CAttrValue& value) {
    CFollowedAttr* const attr = m_links ? m_links->followed.find(name) : nullptr;
    if (!attr || attr->followers.isEmpty()) return nullptr;
    if (attr->isNotifying) {
        if (!std::exchange(attr->isLoopLogged, true))
            logLine("Attribute '%s' follows itself in a circle of objects; it was set once. // %s", name,
                    getFullName());
        return nullptr;
    }
    const CObjectWatch watch(*this);
    attr->isNotifying = true;
    CError* const error = notifyFollowers(*attr, value, watch);
    if (watch.isAlive()) attr->isNotifying = false;
    return error;
}

// Each follower is looked up when its turn comes: a handler may release it, or this object. One that a handler binds
// has the present value already.
CError* CObject::notifyFollowers(CFollowedAttr& attr, const CAttrValue& value, const CObjectWatch& watch) {
    const std::uint32_t lastOrder = attr.lastOrder;
    for (auto place = attr.followers.begin(); place;) {
        const std::uint64_t key = place->key;
        if (CFollowedAttr::orderOf(key) <= lastOrder) {
            const CString attrName = place->value.attrName;
            CError* const error = place->value.object->onSetAttrEvent(getFullName(), attrName, value);
            if (error || !watch.isAlive()) return error;
        }
        place = attr.followers.upperBound(key);
    }
    return nullptr;
}

}  // namespace brt
