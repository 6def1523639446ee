// SPDX-License-Identifier: LicenseRef-Halyard
// The base of modules that measure in frames: it cuts what comes in at the ends of frames, which have nothing to do
// with blocks, and posts a record for each, stamped with the time of the frame's middle.
//
// How many frames there are a second is fixed by the definition, or follows what displays ask for.
// Owner: its process. Threads: audio.
#pragma once

#include "Audio/CAudioModule.h"
#include "Audio/CAudioVizData.h"
#include "Core/CClassInfo.h"

namespace brt {

struct VizSlot;

// Of the definitions of such modules.
inline constexpr CAttrInfo kFrameAttributes[] = {
    attr::text("fps").help("frames a second; empty: as many as displays ask for"),
};

class CModStatsModule : public CAudioModule {
public:
    static constexpr bool kHasOutputs = false;

    using CAudioModule::CAudioModule;

    void prepare() override;
    // Starts the measurement over, once there has been one.
    void reset() override;

    // Runs one block.
    void process();

protected:
    // Recomputes all that follows from parameters and sample rate, and starts over.
    virtual void setupStats() = 0;
    // Measures `chunkLength` samples from `chunkOffset` of the block on.
    virtual void processChunk() = 0;
    // A new record with what it has come to; who, where and when is filled in here.
    virtual std::unique_ptr<CAudioVizDataMeter> makeFrame() = 0;

    int chunkLength() const noexcept { return m_chunkLength; }
    int chunkOffset() const noexcept { return m_chunkOffset; }
    // For `update`, where a time has changed.
    void startOver();

private:
    void beginFrame();
    void endFrame();

    double m_fps = 30.0;
    bool m_isFpsFixed = false;
    int m_chunkLength = 0;
    int m_chunkOffset = 0;
    VizSlot* m_vizSlot = nullptr;  // null: nobody collects
    double m_time = 0.0;           // of the stream, in seconds
    bool m_needsSetup = false;
    int m_frameLength = 32;
    int m_toNextFrame = 32;
};

}  // namespace brt
