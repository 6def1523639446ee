// SPDX-License-Identifier: LicenseRef-Halyard
// What the sources of CParamInterfaceBase share: what clients hold in it.
#pragma once

#include "Audio/CParamInterfaceBase.h"
#include "Core/CUpdateListener.h"

namespace brt {

// Tells a client of changes of one parameter.
class CParamInterfaceBase::CParamListener final : public CUpdateListener, public CBrtMemAllocator {
public:
    CParamListener(CParamInterfaceBase& base, CAudioParam& param, ParamHandle handle)
        : m_base(base), m_param(param), m_handle(handle) {}
    ~CParamListener() override { detach(); }

    CAudioParam& param() const noexcept { return m_param; }
    void update(const CUpdateData* data) override;

private:
    CParamInterfaceBase& m_base;
    CAudioParam& m_param;
    const ParamHandle m_handle;
};

// Removes those of one client.
template <class Value>
void eraseClient(COrderedMap<ParamHandle, Value>& map, int clientId) {
    auto place = map.lowerBound(makeHandle(clientId, 0));
    while (place && clientOf(place->key) == clientId) place = map.erase(place);
}

}  // namespace brt
