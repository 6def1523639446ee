// SPDX-License-Identifier: LicenseRef-Halyard
// The meter of gain reduction: what the clipper would take away from the signal in front of it, found at the host's
// rate with the clipping function alone. CGainReductionCore does the arithmetic.
// Owner: the graph. Threads: audio.
#pragma once

#include "Audio/CAudioProcessDefBase.h"
#include "Audio/CAudioProcessTerminalBase.h"
#include "Modules/CGainReductionCore.h"
#include "Modules/CModStatsModule.h"

namespace brt {

class CModHalyardMeterDef : public CAudioProcessDefBase {
public:
    static void describeClass(CClassInfo& info);
    std::unique_ptr<CAudioProcessBase> createProcess() const override;
};

class CModHalyardMeterModule final : public CModStatsModule {
public:
    using CModStatsModule::CModStatsModule;

    void update() override;
    void bindParams() override;

protected:
    void setupStats() override;
    void processChunk() override;
    std::unique_ptr<CAudioVizDataMeter> makeFrame() override;

private:
    CParamSlot m_release;
    CParamSlot m_hardness;
    CGainReductionCore m_core;
};

class CModHalyardMeter final : public CAudioProcessTerminal<CModHalyardMeterModule> {};

}  // namespace brt
