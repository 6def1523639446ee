// SPDX-License-Identifier: LicenseRef-Halyard
// The clipper in the graph: one core a channel, none of which knows of another. Hardness and residue take effect at a
// block's start, at once.
// Owner: the graph. Threads: audio.
#pragma once

#include "Audio/CAudioProcessDefBase.h"
#include "Audio/CAudioProcessTerminalBase.h"
#include "Modules/CHalyardCore.h"

namespace brt {

class CModHalyardDef : public CAudioProcessDefBase {
public:
    static void describeClass(CClassInfo& info);
    std::unique_ptr<CAudioProcessBase> createProcess() const override;
};

class CModHalyardModule final : public CAudioModule {
public:
    explicit CModHalyardModule(CAudioProcessTerminalBase& process);
    ~CModHalyardModule() override;

    void reset() override { m_core->reset(); }
    void update() override;
    void bindParams() override;
    void process();

private:
    CParamSlot m_hardness;
    CParamSlot m_residue;
    std::unique_ptr<CHalyardCore> m_core;
};

class CModHalyard final : public CAudioProcessTerminal<CModHalyardModule> {};

}  // namespace brt
