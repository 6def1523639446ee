// SPDX-License-Identifier: LicenseRef-Halyard
// The parameters that a host sees, in the order of the document: the place of one in it is its number for the host.
// Owner: the instance's tree. Threads: that of the tree while parameters come and go, then any.
#pragma once

#include "Core/CObject.h"

namespace brt {

class CAudioExtParam;

class CAudioExtParamList : public CObject {
public:
    [[nodiscard]] CError* onChildAdded(CObject* child) override;
    void onChildRemoved(CObject* child) override;

    const CSmallArray<CAudioExtParam*>& params() const noexcept { return m_params; }

private:
    CSmallArray<CAudioExtParam*> m_params;  // children
};

}  // namespace brt
