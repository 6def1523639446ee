// SPDX-License-Identifier: LicenseRef-Halyard
// A container: its processes, how they are linked, and when links and processes are bypassed.
// Owner: the shared tree, which outlives every instance. Threads: any, once it is initialised; nothing changes then.
#pragma once

#include "Audio/CAudioProcessDefBase.h"

namespace brt {

class CAudioProcessBypassStateDef;
class CAudioProcessLinkDef;
class CAudioProcessLinkStateDef;

class CAudioProcessDef : public CAudioProcessDefBase {
public:
    using CLinks = CSmallArray<const CAudioProcessLinkDef*>;

    static void describeClass(CClassInfo& info);
    [[nodiscard]] CError* init() override;
    [[nodiscard]] CError* initDone() override;

    std::unique_ptr<CAudioProcessBase> createProcess() const override;

    // Each process is fed by the one before it, but for those that are out of order.
    bool isAutoLinks() const noexcept { return m_isAutoLinks; }

    // All in the order of the document. The processes include the prototypes.
    const CSmallArray<const CAudioProcessDefBase*>& childProcesses() const noexcept { return m_childProcesses; }
    const CSmallArray<const CAudioProcessLinkStateDef*>& linkStates() const noexcept { return m_linkStates; }
    const CSmallArray<const CAudioProcessBypassStateDef*>& bypassStates() const noexcept { return m_bypassStates; }
    // Those of one state; null if it has none.
    const CLinks* links(int stateId) const noexcept { return m_links.find(stateId); }

private:
    void sortChild(const CObject& child);

    bool m_isAutoLinks = false;
    CSmallArray<const CAudioProcessDefBase*> m_childProcesses;
    COrderedMap<std::int32_t, CLinks> m_links;  // by state
    CSmallArray<const CAudioProcessLinkStateDef*> m_linkStates;
    CSmallArray<const CAudioProcessBypassStateDef*> m_bypassStates;
};

}  // namespace brt
