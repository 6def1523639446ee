// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CUIEventBridge.h"

#include "Core/CObjectAddress.h"
#include "Core/CStdEventBridge.h"

namespace brt {

int CUIEventBridge::open() {
    if (const int error = CMessageLoop::obtain(m_loop)) return error;
    m_address = m_loop->addressOf(m_loop->addTarget(*this));
    const CLock lock(m_lock);
    m_isOpen = true;
    return 0;
}

void CUIEventBridge::close() {
    if (m_loop == nullptr) return;
    {
        const CLock lock(m_lock);
        m_isOpen = false;
        m_waiting.clear();
    }
    m_loop->removeTarget(m_address.target());
    m_loop.reset();
}

CError* CUIEventBridge::send(CRef<CEventArgs> args) {
    std::int64_t number = 0;
    {
        const CLock lock(m_lock);
        if (!m_isOpen) return nullptr;
        number = ++m_lastNumber;
        m_waiting.findOrInsert(number) = std::move(args);
    }
    const int code = m_address.post(kEventMessage, number);
    if (code == 0) return nullptr;
    take(number);
    return makeError(nullptr, __FILE__, __LINE__, "", "@brtstr_CSystem_sendEvent_PostMessage Post message error %1.",
                     code);
}

// Null if it went with the bridge.
CRef<CEventArgs> CUIEventBridge::take(std::int64_t number) {
    const CLock lock(m_lock);
    const auto place = m_waiting.locate(number);
    if (!place) return {};
    CRef<CEventArgs> args = std::move(place->value);
    m_waiting.erase(place);
    return args;
}

// The event may release the owner, and with it this bridge: nothing of it is touched afterwards.
void CUIEventBridge::handleMessage(std::uint32_t, std::int64_t number) {
    if (const CRef<CEventArgs> args = take(number)) reportError(m_owner.handleBridgedEvent(*args));
}

}  // namespace brt
