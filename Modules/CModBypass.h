// SPDX-License-Identifier: LicenseRef-Halyard
// Chooses what a channel passes on: the main port (wet), port 1 (dry), or, while other channel groups are soloed,
// nothing. It copies no sample. Owner: the graph. Threads: audio.
#pragma once

#include "Audio/CAudioProcessDefBase.h"
#include "Audio/CAudioProcessTerminalBase.h"

namespace brt {

class CModBypassDef : public CAudioProcessDefBase {
public:
    static void describeClass(CClassInfo& info);
    std::unique_ptr<CAudioProcessBase> createProcess() const override;
};

class CModBypassModule final : public CAudioModule {
public:
    using CAudioModule::CAudioModule;

    void prepare() override { m_guard.seed(); }
    void update() override;
    void bindParams() override;
    void process();

private:
    bool isSilencedBySolo() const noexcept;

    CParamSlot m_enable;
    CParamSlot m_groupSolo;  // all groups
    bool m_isWet = true;
    bool m_isSilent = false;
    CGuardSignal m_guard;
    const CAudioPort::CSlot* m_dry = nullptr;  // null: port 1 has no channel of this group
};

class CModBypass final : public CAudioProcessTerminal<CModBypassModule> {};

}  // namespace brt
