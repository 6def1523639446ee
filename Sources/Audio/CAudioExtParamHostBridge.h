// SPDX-License-Identifier: LicenseRef-Halyard
// How an instance tells its host that something has changed. A host may hold a lock of its own inside such a call, or
// call straight back; so everybody but the adapter goes through `CHostCall`, which waits until the thread holds no lock
// of ours.
// Owner: the adapter is one; it outlives all who call it. Threads: any.
#pragma once

#include "Core/CRankedLock.h"

namespace brt {

class CAudioExtParamHostBridge : public CCheckedObject {
public:
    // `extIndex` counts the host's parameters from 0; `value` is 0 to 1.
    virtual void hostAutomate(int extIndex, double value) = 0;
    // The program, or its name.
    virtual void hostUpdateDisplay() = 0;
    // A user takes hold of a control, and lets it go.
    virtual void hostBeginEdit(int extIndex) = 0;
    virtual void hostEndEdit(int extIndex) = 0;
};

class CHostCall final : public CDeferredCall {
public:
    enum class EKind : std::uint8_t { kBeginEdit, kAutomate, kEndEdit, kUpdateDisplay };

    // [any] Calls run in the order in which the thread defers them; of automations of one parameter that follow each
    // other the last one stays.
    static void defer(CAudioExtParamHostBridge& bridge, EKind kind, int extIndex = 0, double value = 0.0);

    void run() override;
    bool absorb(const CDeferredCall& later) override;

private:
    CHostCall(CAudioExtParamHostBridge& bridge, EKind kind, int extIndex, double value) noexcept
        : m_bridge(bridge), m_kind(kind), m_extIndex(extIndex), m_value(value) {}

    CAudioExtParamHostBridge& m_bridge;
    const EKind m_kind;
    const int m_extIndex;
    double m_value;
};

}  // namespace brt
