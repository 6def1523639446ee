// SPDX-License-Identifier: LicenseRef-Halyard
// What the sources of CParamInterfaceBase share: what clients hold in it.
#pragma once

#include "Audio/CAudioParamRegistry.h"
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

// Tells a client of changes of the names of presets.
class CParamInterfaceBase::CRegistryListener final : public CUpdateListener, public CBrtMemAllocator {
public:
    // `registry`: null where there is none of the name that was asked for.
    CRegistryListener(CParamInterfaceBase& base, CAudioParamRegistry* registry, ParamHandle handle)
        : m_base(base), m_registry(registry), m_handle(handle) {}
    ~CRegistryListener() override { detach(); }

    CAudioParamRegistry* registry() const noexcept { return m_registry; }
    void update(const CUpdateData*) override { m_base.sendRegistry(m_handle, *m_registry, false); }

private:
    CParamInterfaceBase& m_base;
    CAudioParamRegistry* const m_registry;  // not owned
    const ParamHandle m_handle;
};

// A step of the history that a client gathers, and the values that the host holds for it meanwhile.
struct CParamInterfaceBase::COpenRecord : CBrtMemAllocator {
    std::unique_ptr<CAudioParamUndoRecord> record;
    COrderedMap<CAudioParam*, COrderedSet<std::uint32_t>> edits;  // element * 256 + group of each
};

// Removes those of one client.
template <class Value>
void eraseClient(COrderedMap<ParamHandle, Value>& map, int clientId) {
    auto place = map.lowerBound(makeHandle(clientId, 0));
    while (place && clientOf(place->key) == clientId) place = map.erase(place);
}

}  // namespace brt
