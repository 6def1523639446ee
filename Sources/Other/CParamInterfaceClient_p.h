// SPDX-License-Identifier: LicenseRef-Halyard
// How clients send, for the sources of the client classes.
#pragma once

#include "Audio/CParamMessage.h"
#include "Other/CParamInterfaceClient.h"

namespace brt {

template <class... Fields>
void CParamInterfaceClient::send(CStringView name, const Fields&... fields) {
    CParamMessage message(name, fields...);
    send(message);
}

template <class Handles>
ParamHandle CParamInterfaceClient::newHandle(int& lastNumber, const Handles& used) const {
    const int number =
        nextFreeNumber(lastNumber, [&](int candidate) { return used.contains(makeHandle(m_clientId, candidate)); });
    return number != 0 ? makeHandle(m_clientId, number) : 0;
}

}  // namespace brt
