// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioExtParamList.h"

#include "Audio/CAudioExtParam.h"
#include "Core/CError.h"

namespace brt {

CError* CAudioExtParamList::onChildAdded(CObject* child) {
    BRT_TRY(getFullName(), CObject::onChildAdded(child));
    if (auto* const param = dynamic_cast<CAudioExtParam*>(child)) m_params.append(param);
    return nullptr;
}

void CAudioExtParamList::onChildRemoved(CObject* child) {
    const int index = m_params.find(dynamic_cast<CAudioExtParam*>(child));
    if (index >= 0) m_params.removeAt(index);
    CObject::onChildRemoved(child);
}

}  // namespace brt
