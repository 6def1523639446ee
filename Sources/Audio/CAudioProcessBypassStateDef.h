// SPDX-License-Identifier: LicenseRef-Halyard
// A named condition on one or two parameters. While it holds, the processes and links of its container that carry its
// id take no part in the graph.
// Owner: the process definition that it stands in. Threads: any, once it is initialised.
#pragma once

#include "Audio/CAudioValueRange.h"
#include "Core/CObject.h"

namespace brt {

class CAudioProcessBypassStateDef : public CObject {
public:
    static constexpr double kTolerance = 0.1;  // of a comparison with one value

    static void describeClass(CClassInfo& info);
    [[nodiscard]] CError* init() override;

    int id() const noexcept { return m_id; }
    // As `resolveParamName` takes them; the second is empty if one condition is all.
    const CString& param() const noexcept { return m_first.param; }
    const CString& andParam() const noexcept { return m_second.param; }
    bool isInverted() const noexcept { return m_isInverted; }

    // [any] Whether the state holds, while `a` is the value of `param` and `b` that of `andParam`, if there is one.
    bool isActive(double a, double b) const noexcept;

private:
    struct CCondition {
        CString param;
        double value = 0.0;      // without a range
        CAudioValueRange range;  // not valid: none

        bool holds(double current) const noexcept;
    };
    CError* parseCondition(CCondition& condition, CStringView rangeName, CStringView valueName, CStringView failure);

    int m_id = 0;
    CCondition m_first;
    CCondition m_second;
    bool m_isInverted = false;
};

}  // namespace brt
