// SPDX-License-Identifier: LicenseRef-Halyard
// A window's copy of a parameter: its definition and its present values, as far as they have arrived.
// Owner: whoever listens through it. Threads: the window's.
#pragma once

#include "Other/CParamInterfaceListeners.h"

namespace brt {

class CParamMirror : public CParamInterfaceParamListener {
public:
    // Null until the definition has come.
    const CAudioParamInfo* info() const noexcept { return m_info.get(); }
    const CAudioParamStorage& values() const noexcept { return m_values; }
    // As users read it; "" without a definition.
    CString text(int group, int element) const;

    void onParamInfo(std::unique_ptr<CAudioParamInfo> info) override;
    void onParamUpdate(const CAudioParamUpdate& update) override;

private:
    std::unique_ptr<CAudioParamInfo> m_info;
    CAudioParamStorage m_values;
};

}  // namespace brt
