// SPDX-License-Identifier: LicenseRef-Halyard
#include "Other/CParamMirror.h"

#include "Audio/CAudioParamConverter.h"

namespace brt {

void CParamMirror::onParamInfo(std::unique_ptr<CAudioParamInfo> info) {
    m_info = std::move(info);
    if (!m_info) m_values.clear();
}

void CParamMirror::onParamUpdate(const CAudioParamUpdate& update) { m_values.apply(update); }

CString CParamMirror::text(int group, int element) const {
    CString result;
    if (!m_info || m_info->converter() == nullptr) return result;
    m_info->converter()->format(result, *m_info, 0, m_values.value(group, element, 0.0), m_values.data(),
                                EAudioTextMode::kMedium);
    return result;
}

}  // namespace brt
