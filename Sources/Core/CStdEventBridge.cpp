// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CStdEventBridge.h"

#include "Core/CClassInfo.h"
#include "Core/CUIEventBridge.h"

namespace brt {

void CStdEventBridge::describeClass(CClassInfo& info) {
    CObject::describeClass(info);
    info.requireName();
    info.acceptAnyAttribute();  // variables of the tree below it
}

CStdEventBridge::CStdEventBridge() : m_bridge(new CUIEventBridge(*this)), m_openError(m_bridge->open()) {
    setBridge(CRef<CObjectEventBridge>(m_bridge.get()));
}

CStdEventBridge::~CStdEventBridge() { m_bridge->close(); }

CError* CStdEventBridge::init() {
    if (m_openError != 0)
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CStdEventBridge_init_MessageLoop Message loop creation error %1.", m_openError);
    BRT_TRY(getFullName(), CObject::init());
    return nullptr;
}

CError* CStdEventBridge::handleBridgedEvent(const CEventArgs& args) {
    CObject* const listener = findObject(args.text(eventArg::kListener));
    const CAttrValue* const id = args.values().find(eventArg::kListenerId);
    if (listener == nullptr || id == nullptr || id->asInteger() != listener->id()) return nullptr;
    return listener->runEvent(args.text(eventArg::kListenerProc), args.values());
}

}  // namespace brt
