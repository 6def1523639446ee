// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CObjectAddress.h"

#include "Core/CEventRegistry.h"
#include "Platform/CMessageLoop.h"

namespace brt {

CObjectAddress::CObjectAddress(CRef<CEventRegistry> events, CRef<CObjectEventBridge> bridge, CStringView fullName,
                               int id)
    : m_events(std::move(events)), m_bridge(std::move(bridge)), m_fullName(fullName), m_id(id) {}

CObjectAddress::~CObjectAddress() = default;

void CObjectAddress::post(CStringView sender, CStringView handlerName, const CAttrMap& args) const {
    if (!m_bridge) return;
    CRef<CEventArgs> copy(new CEventArgs(args));
    copy->setText(eventArg::kSender, sender);
    reportError(send(std::move(copy), handlerName));
}

CError* CObjectAddress::send(CRef<CEventArgs> args, CStringView handlerName) const {
    args->setText(eventArg::kListener, m_fullName);
    args->setInteger(eventArg::kListenerId, m_id);
    args->setText(eventArg::kListenerProc, handlerName);
    BRT_TRY(m_fullName, m_bridge->send(std::move(args)));
    return nullptr;
}

CError* CObjectAddress::fire(CStringView eventName, const CAttrMap& args) const {
    return m_events ? m_events->dispatch(m_fullName, eventName, args) : nullptr;
}

void reportError(CError* error) {
    if (error == nullptr) return;
    if (CMessageLoop::current() != nullptr) {
        showError(error);
    } else {
        logError(error);
        discardError(error);  // logged: nobody waits for a user on a timer's or a worker's thread
    }
}

}  // namespace brt
