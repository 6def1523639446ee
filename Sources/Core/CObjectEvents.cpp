// SPDX-License-Identifier: LicenseRef-Halyard
// How objects talk by events.
#include "Core/CClassInfo.h"
#include "Core/CObject.h"
#include "Core/Log.h"

namespace brt {

void CObject::releaseLinks() {}

// The value has been expanded where it comes from: braces in it now are plain characters.
CError* CObject::onSetAttrEvent(CStringView, CStringView name, const CAttrValue& value) {
    return value.type() == CAttrValue::EType::kString ? setAttrRaw(name, value.asString(), kImmediate)
                                                      : setAttrValue(name, value, kImmediate);
}

CError* CObject::onReleaseChildEvent(const CAttrMap& args) {
    const CAttrValue* const sender = args.find("sender");
    if (sender) release(findObject(sender->asString()));
    return nullptr;
}

void CObject::listenObject(CStringView, CStringView, CStringView) {}

void CObject::unlistenObject(CStringView, CStringView) {}

CError* CObject::fireEvent(CStringView) { return nullptr; }

CError* CObject::fireEvent(CStringView, CAttrMap&) { return nullptr; }

void CObject::postEvent(CStringView, CStringView, CAttrMap&) {}

CError* CObject::runEvent(CStringView handlerName) { return runEvent(handlerName, CAttrMap()); }

CError* CObject::runEvent(CStringView handlerName, const CAttrMap& args) {
    const CEventInfo* const row = m_classInfo ? m_classInfo->findEvent(handlerName) : nullptr;
    if (!row)
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CObject_runEvent_UnknownEvent Unknown event '%1'.", handlerName);
    BRT_TRY(getFullName(), row->handler(*this, args));
    return nullptr;
}

void CObject::releaseBridged() {}

}  // namespace brt
