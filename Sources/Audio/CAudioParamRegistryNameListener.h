// SPDX-License-Identifier: LicenseRef-Halyard
// Hears when the parameter changes that shows the name of a registry's preset, so that the program takes the name on.
// Owner: the registry. Threads: `update` runs on the thread of the change, under the parameter's lock.
#pragma once

#include "Core/CUpdateListener.h"

namespace brt {

class CAudioParamRegistry;

class CAudioParamRegistryNameListener final : public CUpdateListener {
public:
    explicit CAudioParamRegistryNameListener(CAudioParamRegistry& registry) noexcept : m_registry(registry) {}
    ~CAudioParamRegistryNameListener() override { detach(); }

    void update(const CUpdateData* data) override;

private:
    CAudioParamRegistry& m_registry;
};

}  // namespace brt
