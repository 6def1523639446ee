// SPDX-License-Identifier: LicenseRef-Halyard
// A parameter whose rounded value selects a set of links: those whose "state-id" it equals.
// Owner: the process definition that it stands in. Threads: any, once it is initialised.
#pragma once

#include "Core/CObject.h"

namespace brt {

class CAudioProcessLinkStateDef : public CObject {
public:
    static void describeClass(CClassInfo& info);
    [[nodiscard]] CError* init() override;

    const CString& param() const noexcept { return m_param; }  // as `resolveParamName` takes it

private:
    CString m_param;
};

}  // namespace brt
