// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/CModStatsModule.h"

#include <algorithm>

#include "Audio/CAudioEnv.h"
#include "Audio/CAudioProcessDefBase.h"
#include "Audio/CAudioProcessTerminalBase.h"
#include "Audio/CAudioVizCollector.h"
#include "Core/NumberText.h"
#include "Modules/MeterRoutines.h"

namespace brt {

void CModStatsModule::prepare() {
    const CStringView text = CAudioModule::process().definition().getAttrString("fps");
    constexpr double kFpsOfBadText = 30.0;
    m_isFpsFixed = !text.isEmpty();
    if (m_isFpsFixed && !(parseDouble(text, m_fps) && m_fps > 0.0)) m_fps = kFpsOfBadText;
    CAudioVizCollector* const collector = context().viz;
    m_vizSlot = collector != nullptr ? &collector->getSlot(CAudioModule::process().path()) : nullptr;
    m_needsSetup = false;
}

void CModStatsModule::startOver() {
    m_needsSetup = true;
    reset();
}

void CModStatsModule::reset() {
    if (!m_needsSetup) return;
    beginFrame();
    m_time = context().env.streamSeconds();
    setupStats();
}

void CModStatsModule::beginFrame() {
    if (!m_isFpsFixed) m_fps = context().env.frameRate();
    m_frameLength = m_toNextFrame = meterFrameLength(sampleRate(), m_fps);
}

void CModStatsModule::process() {
    if (inputCount() == 0) return;
    m_chunkOffset = 0;
    for (int left = blockLength(); left > 0; left -= m_chunkLength) {
        m_chunkLength = std::min(left, m_toNextFrame);
        m_toNextFrame -= m_chunkLength;
        m_time += m_chunkLength / sampleRate();
        processChunk();
        m_chunkOffset += m_chunkLength;
        if (m_toNextFrame == 0) endFrame();
    }
}

void CModStatsModule::endFrame() {
    if (m_vizSlot != nullptr) {
        std::unique_ptr<CAudioVizDataMeter> frame = makeFrame();
        frame->channel = std::max(channelNumber(), 0);
        frame->group = group();
        frame->stackIndex = stackIndex();
        frame->time = m_time - 0.5 * m_frameLength / sampleRate();
        context().viz->post(*m_vizSlot, std::move(frame));
    }
    beginFrame();
}

}  // namespace brt
