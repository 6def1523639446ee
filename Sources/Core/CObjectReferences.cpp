// SPDX-License-Identifier: LicenseRef-Halyard
// References in the texts of attributes.
#include "Core/CObject.h"

namespace brt {

void CObject::expandReferences(CString& result, bool& isRaw, CStringView, CStringView text) {
    result = text;
    isRaw = false;
}

void CObject::resolveReference(CString& result, bool& isRaw, CStringView, CStringView, CStringView defaultText,
                               bool) const {
    result = defaultText;
    isRaw = false;
}

}  // namespace brt
