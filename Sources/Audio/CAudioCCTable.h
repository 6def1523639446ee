// SPDX-License-Identifier: LicenseRef-Halyard
// Which host parameter each MIDI controller moves: a setting that all instances share, under the key "ccmap".
// Owner: the instance's tree. Threads: any.
#pragma once

#include <array>

#include "Core/CAppDataListener.h"
#include "Core/CObject.h"

namespace brt {

class CAudioExtParam;
class CInputStream;

class CAudioCCTable : public CObject {
public:
    static constexpr int kControllers = 128;

    static void describeClass(CClassInfo& info);
    [[nodiscard]] CError* initDone() override;

    // Null for a controller that moves nothing, or is none.
    CAudioExtParam* find(int controller) const noexcept;

private:
    using Targets = std::array<CAudioExtParam*, kControllers>;

    void onMapChanged(const CUpdateData* data);
    void reload();
    [[nodiscard]] CError* readMap(CInputStream& stream, Targets& targets) const;

    CCriticalSection m_reloadLock;  // before the other
    mutable CCriticalSection m_lock{50};
    Targets m_targets BRT_GUARDED_BY(m_lock){};
    CAppDataListener<CAudioCCTable> m_listener{*this, &CAudioCCTable::onMapChanged};
};

}  // namespace brt
