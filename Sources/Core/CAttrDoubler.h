// SPDX-License-Identifier: LicenseRef-Halyard
// Copies its attribute "value", as a rule a live reference, to an attribute of other objects:
//
//     <core:attr-doubler NAME="double-height" target="^^ ^left" attr="height" value="{*/^ height}"/>
//
// A target that has gone, or whose name another object has got, is left out.
// Owner and threads: as for any object.
#pragma once

#include "Core/COwnedArray.h"
#include "Core/CTarget.h"

namespace brt {

class CAttrDoubler : public CObject {
public:
    static void describeClass(CClassInfo& info);

    // Finds the targets; all must be there.
    [[nodiscard]] CError* init() override;

private:
    CError* attrValue(const CAttrValue& value);

    COwnedArray<CTarget<CObject>> m_targets;
    CString m_attrName;
    bool m_isCopying = false;
};

}  // namespace brt
