// SPDX-License-Identifier: LicenseRef-Halyard
// The object at the top of a tree of user interface objects: events for those below it arrive on the thread that made
// it, through that thread's message loop.
// Owner and threads: as for any object; it is made, used and released on one thread.
#pragma once

#include "Core/CObject.h"

namespace brt {

class CEventArgs;
class CUIEventBridge;

class CStdEventBridge : public CObject {
public:
    static void describeClass(CClassInfo& info);

    CStdEventBridge();
    ~CStdEventBridge() override;
    [[nodiscard]] CError* init() override;

    // Runs an event that has come over the bridge on the object that it is for. One for an object that has gone is
    // dropped, also if another has got its name.
    [[nodiscard]] virtual CError* handleBridgedEvent(const CEventArgs& args);

private:
    const CRef<CUIEventBridge> m_bridge;
    const int m_openError;  // the system's code
};

}  // namespace brt
