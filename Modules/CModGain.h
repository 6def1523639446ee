// SPDX-License-Identifier: LicenseRef-Halyard
// Gain, mute and phase: one factor a channel. At a factor of 1 it hands its input on untouched. It has no ramp of its
// own; its definition asks for a fade between two modules.
// Owner: the graph. Threads: audio.
#pragma once

#include "Audio/CAudioProcessDefBase.h"
#include "Audio/CAudioProcessTerminalBase.h"

namespace brt {

class CModGainDef : public CAudioProcessDefBase {
public:
    static void describeClass(CClassInfo& info);
    std::unique_ptr<CAudioProcessBase> createProcess() const override;
};

class CModGainModule final : public CAudioModule {
public:
    using CAudioModule::CAudioModule;

    void prepare() override { m_guard.seed(); }
    void update() override;
    void bindParams() override;
    void process();

private:
    CParamSlot m_gain;
    CParamSlot m_mute;
    CParamSlot m_phaseInvert;
    bool m_isMuted = false;
    bool m_isActive = false;  // the factor is not 1
    double m_factor = 1.0;
    CGuardSignal m_guard;
};

class CModGain final : public CAudioProcessTerminal<CModGainModule> {};

}  // namespace brt
