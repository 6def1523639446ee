// SPDX-License-Identifier: LicenseRef-Halyard
#include "Other/CParamInterfaceClientConnectorUni.h"

#include "Core/CClassInfo.h"
#include "Core/CError.h"
#include "Other/CParamInterfaceBaseConnectorUni.h"

namespace brt {

void CParamInterfaceClientConnectorUni::describeClass(CClassInfo& info) {
    CParamInterfaceClientConnector::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::text("base-connector")
            .required()
            .help("path of the instance's connector, from the root in \"BaseConnectorRootPtr\" if there is one"),
        attr::number("fps").atLeast(0.0).runs<&CParamInterfaceClientConnectorUni::attrFps>().help(
            "ticks a second at which messages are fetched"),
        attr::text("timer-tag").help("class of the timer; without one somebody calls poll"),
    };
    static constexpr CEventInfo kEvents[] = {
        event<&CParamInterfaceClientConnectorUni::onTimerTick>("timer-tick", "fetches messages"),
    };
    info.addAttributes(kAttributes);
    info.addEvents(kEvents);
}

CError* CParamInterfaceClientConnectorUni::init() {
    BRT_TRY(getFullName(), CParamInterfaceClientConnector::init());
    BRT_TRY(getFullName(), findBase());
    setClientId(m_base->addClient());
    if (clientId() == 0)
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CParamInterfaceClientConnectorUni_init_TooManyClients There are too many windows for "
                         "one instance: close some (%1 are open).",
                         kLastClientId);
    return startTimer();
}

// The window's tree may hold the address of the place where the root of the instance's tree stands.
CError* CParamInterfaceClientConnectorUni::findBase() {
    const CStringView path = getAttrString("base-connector");
    const auto* const audioRoot = static_cast<CObject* const*>(root()->getAttrPointer("BaseConnectorRootPtr"));
    const CObject& from = audioRoot != nullptr && *audioRoot != nullptr ? **audioRoot : *this;
    BRT_TRY(getFullName(), from.findObjectChecked(m_base, path));
    return nullptr;
}

CError* CParamInterfaceClientConnectorUni::startTimer() {
    const CString timerTag(getAttrString("timer-tag"));
    if (timerTag.isEmpty()) return nullptr;
    CAttrMap attributes;
    attributes.findOrInsert("fps").setDouble(getAttrDouble("fps"));
    BRT_TRY(getFullName(), createChild(m_timer, timerTag, "timer", kTemplateOptional, nullptr, &attributes));
    listenObject(m_timer->getFullName(), "tick", "timer-tick");
    return nullptr;
}

void CParamInterfaceClientConnectorUni::releaseLinks() {
    if (m_base != nullptr && clientId() != 0) m_base->removeClient(clientId());
    setClientId(0);
    m_base = nullptr;
    m_timer = nullptr;
    CParamInterfaceClientConnector::releaseLinks();
}

bool CParamInterfaceClientConnectorUni::sendToBase(const CByteBuffer& bytes) {
    if (m_base == nullptr) return false;
    CError* const error = m_base->processClientData(bytes);
    logError(error);
    return !discardError(error);  // logged; the caller has nothing to do about it
}

void CParamInterfaceClientConnectorUni::poll() {
    if (m_base == nullptr) return;
    CPacketList packets;
    m_base->takeMessages(clientId(), packets);
    receive(packets);
}

CError* CParamInterfaceClientConnectorUni::attrFps(const CAttrValue& value) { return setFps(value.asDouble()); }

CError* CParamInterfaceClientConnectorUni::setFps(double fps) {
    if (m_timer == nullptr) return nullptr;
    BRT_TRY(getFullName(), m_timer->setAttrDouble("fps", fps, kImmediate));
    return nullptr;
}

CError* CParamInterfaceClientConnectorUni::onTimerTick() {
    poll();
    return nullptr;
}

}  // namespace brt
