// SPDX-License-Identifier: LicenseRef-Halyard
// Who reads the messages that a connector brings: an instance's interface, or a window's client.
// Owner and threads: see those.
#pragma once

#include "Core/CCheckedObject.h"

namespace brt {

class CByteBuffer;
class CError;

class CParamMessageHandler : public CCheckedObject {
public:
    // One at a time; its work is done when it returns.
    [[nodiscard]] virtual CError* handleMessage(const CByteBuffer& bytes) = 0;
    // At the instance: a client has gone, and all that it holds goes too.
    virtual void onClientGone(int clientId) { static_cast<void>(clientId); }
};

}  // namespace brt
