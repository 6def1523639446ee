// SPDX-License-Identifier: LicenseRef-Halyard
// A window's end of the way to an instance in the same process. A message to the instance is a call, which has been
// handled when it returns; messages from it are fetched at each tick of a timer.
// Owner and threads: as for any object of a window.
#pragma once

#include "Other/CParamInterfaceClientConnector.h"

namespace brt {

class CParamInterfaceBaseConnectorUni;

class CParamInterfaceClientConnectorUni : public CParamInterfaceClientConnector {
public:
    static void describeClass(CClassInfo& info);

    [[nodiscard]] CError* init() override;
    void releaseLinks() override;

    bool sendToBase(const CByteBuffer& bytes) override;
    void poll() override;

    // Ticks a second.
    [[nodiscard]] virtual CError* setFps(double fps);
    [[nodiscard]] virtual CError* onTimerTick();

private:
    CError* attrFps(const CAttrValue& value);
    CError* findBase();
    CError* startTimer();

    CParamInterfaceBaseConnectorUni* m_base = nullptr;  // not owned; outlives this object
    CObject* m_timer = nullptr;                         // a child; null without a tag
};

}  // namespace brt
