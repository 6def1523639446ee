// SPDX-License-Identifier: LicenseRef-Halyard
// How an object's attributes are read and assigned, and how their handlers run.
#include "Core/CClassInfo.h"
#include "Core/CObject.h"
#include "Core/CObjectLinks.h"
#include "Core/CObjectWatch.h"
#include "Core/Log.h"

namespace brt {

CStringView CObject::getAttrString(CStringView name) const {
    const CAttrValue* const value = findAttr(name);
    return value ? value->asString() : CStringView();
}

bool CObject::getAttrBool(CStringView name) const noexcept {
    const CAttrValue* const value = findAttr(name);
    return value && value->asBool();
}

int CObject::getAttrInt(CStringView name) const noexcept {
    const CAttrValue* const value = findAttr(name);
    return value ? value->asInteger() : 0;
}

double CObject::getAttrDouble(CStringView name) const noexcept {
    const CAttrValue* const value = findAttr(name);
    return value ? value->asDouble() : 0.0;
}

void* CObject::getAttrPointer(CStringView name) const noexcept {
    const CAttrValue* const value = findAttr(name);
    return value ? value->asPointer() : nullptr;
}

CStringView CObject::getShortName() const {
    const CStringView fullName = getFullName();
    return fullName.slice(fullName.findLast(u'.') + 1);
}

// Every assignment: guards, the value, the handler, then those that follow the attribute.
template <class Assign>
CError* CObject::assignAttr(CStringView name, ETiming timing, Assign assign) {
    if (m_isReadOnly || name.isEmpty()) return nullptr;
    if (name == kFullName)
        return makeError(
            nullptr, __FILE__, __LINE__, getFullName(),
            "@brtstr_CObject_setAttr_FullName Attribute '%1' belongs to the object tree; an object's name is "
            "given when it is made.",
            name);
    CAttrValue& value = m_attributes.findOrInsert(name);
    assign(value);
    const CObjectWatch watch(*this);
    CError* error = notifyAttrHandler(name, value, timing);
    if (!error && watch.isAlive()) error = notifyBindings(name, value);
    return error ? makeError(error, __FILE__, __LINE__, watch.fullName(), "") : nullptr;
}

CError* CObject::setAttr(CStringView name, CStringView text, ETiming timing) {
    if (m_isReadOnly || name.isEmpty()) return nullptr;
    if (text.find(u'{') < 0) return assignAttr(name, timing, [&](CAttrValue& value) { value.setText(text); });
    CString expanded;
    bool isRaw = false;
    expandReferences(expanded, isRaw, name, text);
    if (isRaw) return setAttrRaw(name, expanded, timing);
    return assignAttr(name, timing, [&](CAttrValue& value) { value.setText(expanded); });
}

CError* CObject::setAttrRaw(CStringView name, CStringView text, ETiming timing) {
    return assignAttr(name, timing, [&](CAttrValue& value) { value.setRawText(text); });
}

CError* CObject::setAttrValue(CStringView name, const CAttrValue& source, ETiming timing) {
    if (source.type() == CAttrValue::EType::kString && !source.isRaw()) return setAttr(name, source.asString(), timing);
    return assignAttr(name, timing, [&](CAttrValue& value) { value = source; });
}

CError* CObject::setAttrPointer(CStringView name, void* pointer, ETiming timing) {
    return assignAttr(name, timing, [&](CAttrValue& value) { value.setPointer(pointer); });
}

CError* CObject::setAttrDouble(CStringView name, double number, ETiming timing) {
    return assignAttr(name, timing, [&](CAttrValue& value) { value.setDouble(number); });
}

CError* CObject::notifyAttrHandler(CStringView name, CAttrValue& value, ETiming timing) {
    if (!value.has(CAttrValue::kHandlerResolved)) {
        const CAttrInfo* const row = m_classInfo ? m_classInfo->findAttribute(name) : nullptr;
        value.m_handler = row ? row->handler : nullptr;
        value.m_flags |= CAttrValue::kHandlerResolved;
    }
    if (!value.m_handler) return nullptr;
    if (timing == kImmediate) return value.m_handler(*this, value);
    if (!value.has(CAttrValue::kQueued)) {
        value.m_flags |= CAttrValue::kQueued;
        value.m_nextQueued = m_pendingAttrs;
        m_pendingAttrs = &value;
    }
    return nullptr;
}

CError* CObject::flushPendingAttrs() {
    if (m_isReadOnly) return nullptr;
    // A handler may assign attributes itself and so queue further handlers; two that queue each other never end.
    constexpr int kMaxRounds = 100;
    for (int round = 0; m_pendingAttrs && round < kMaxRounds; ++round)
        BRT_TRY(getFullName(), runPendingHandlers(std::exchange(m_pendingAttrs, nullptr)));
    if (m_pendingAttrs)
        logLine("Attribute handlers of '%s' queue each other without end; the rest was left.", getFullName());
    return nullptr;
}

// The link is read before the call, which may queue the same value anew.
CError* CObject::runPendingHandlers(CAttrValue* value) {
    CError* error = nullptr;
    while (value) {
        CAttrValue* const next = value->m_nextQueued;
        value->m_flags = static_cast<std::uint8_t>(value->m_flags & ~CAttrValue::kQueued);
        if (!error) error = value->m_handler(*this, *value);
        value = next;
    }
    return error;
}

}  // namespace brt
