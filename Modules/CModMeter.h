// SPDX-License-Identifier: LicenseRef-Halyard
// The level meter of a channel: its level and held peak, or how far it lies above the same channel of port 1.
// CLevelMeterCore does the arithmetic. A change of a time starts over; a change of a gain scales what is shown.
// Owner: the graph. Threads: audio.
#pragma once

#include "Audio/CAudioProcessDefBase.h"
#include "Audio/CAudioProcessTerminalBase.h"
#include "Modules/CLevelMeterCore.h"
#include "Modules/CModStatsModule.h"

namespace brt {

class CModMeterDef : public CAudioProcessDefBase {
public:
    static void describeClass(CClassInfo& info);
    std::unique_ptr<CAudioProcessBase> createProcess() const override;
};

class CModMeterModule final : public CModStatsModule {
public:
    explicit CModMeterModule(CAudioProcessTerminalBase& process);

    void update() override;
    void bindParams() override;

protected:
    void setupStats() override;
    void processChunk() override;
    std::unique_ptr<CAudioVizDataMeter> makeFrame() override;

private:
    // Indices of the definition's allocations.
    enum EParam {
        kPeakTime,
        kRmsTime,
        kGain,
        kBiasTime,
        kUseBias,
        kRelease,
        kPeakGain,
        kRmsTime2,
        kRelease2,
        kUseTime2,
        kUseEbu128,
        kParamCount
    };
    // Memory of the pool that grows where it must.
    struct CRing {
        double* take(CAudioBufferPool& pool, int count);

        CAudioBufferRef buffer;
        int capacity = 0;
    };

    double param(EParam index, double fallback) const noexcept {
        return value(m_params[static_cast<std::size_t>(index)], fallback);
    }
    bool isOn(EParam index) const noexcept { return param(index, 0.0) >= 0.5; }
    bool isAnyTimeChanged() const noexcept;
    EMeterRoutine routine() const noexcept;
    const double* secondSamples();

    std::array<CParamSlot, kParamCount> m_params;
    const CAudioPort::CSlot* m_secondInput = nullptr;  // null: one of the main port takes its place
    const bool m_isDiff;
    const bool m_isCompression;
    const bool m_isInverted;
    double m_gainFactor = 1.0;
    double m_peakGainFactor = 1.0;
    CLevelMeterCore m_core;
    CRing m_peakRing;
    CRing m_window;  // of loudness
};

class CModMeter final : public CAudioProcessTerminal<CModMeterModule> {};

}  // namespace brt
