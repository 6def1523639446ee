// SPDX-License-Identifier: LicenseRef-Halyard
// Declares that a parameter keeps its value in a store of settings, so that all instances and later runs see it.
// Owner: the process definition, or group of parameters, that it stands in. Threads: any, once it is initialised.
#pragma once

#include "Core/CObject.h"

namespace brt {

class CAppData;

class CAudioParamSharedStorage : public CObject {
public:
    static void describeClass(CClassInfo& info);
    [[nodiscard]] CError* init() override;

    const CString& param() const noexcept { return m_param; }        // short name, of one beside this definition
    const CString& dataName() const noexcept { return m_dataName; }  // key in the store
    // Belongs to the process. REQUIRES: initialised.
    CAppData& store() const noexcept { return *m_store; }

private:
    CString m_param;
    CString m_dataName;
    CAppData* m_store = nullptr;
};

}  // namespace brt
