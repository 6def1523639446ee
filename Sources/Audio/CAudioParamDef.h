// SPDX-License-Identifier: LicenseRef-Halyard
// Declares a parameter in a document.
// Owner: the shared tree, which outlives all instances. Threads: any, once it is complete.
#pragma once

#include "Audio/CAudioParamInfo.h"
#include "Core/CObject.h"

namespace brt {

class CAudioParamDef : public CObject {
public:
    static void describeClass(CClassInfo& info);
    [[nodiscard]] CError* init() override;

    const CAudioParamInfo& info() const noexcept { return m_info; }

private:
    [[nodiscard]] CError* readFormat();
    void readFlagsAndNames();

    CAudioParamInfo m_info;
};

}  // namespace brt
