// SPDX-License-Identifier: LicenseRef-Halyard
// Binds a parameter to a numbered slot of a module: the module asks for its parameters by number.
// Owner: the process definition that it stands in. Threads: any, once it is initialised.
#pragma once

#include "Core/CObject.h"

namespace brt {

class CAudioParamAllocDef : public CObject {
public:
    static void describeClass(CClassInfo& info);
    [[nodiscard]] CError* init() override;

    const CString& paramName() const noexcept { return m_paramName; }  // relative to the process
    int index() const noexcept { return m_index; }
    // The module reads more than its own group and element.
    bool useAllGroups() const noexcept { return m_useAllGroups; }
    bool useAllElements() const noexcept { return m_useAllElements; }
    // A change of this one is faded in, whatever the process definition says.
    bool isSmoothUpdate() const noexcept { return m_isSmoothUpdate; }

private:
    CString m_paramName;
    int m_index = 0;
    bool m_useAllGroups = false;
    bool m_useAllElements = false;
    bool m_isSmoothUpdate = false;
};

}  // namespace brt
