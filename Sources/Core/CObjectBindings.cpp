// SPDX-License-Identifier: LicenseRef-Halyard
// Attributes that follow attributes of other objects.
#include "Core/CObject.h"

namespace brt {

void CObject::bindAttribute(CString& result, bool& isRaw, CStringView, CStringView) {
    result.clear();
    isRaw = false;
}

CError* CObject::notifyBindings(CStringView, const CAttrValue&) { return nullptr; }

}  // namespace brt
