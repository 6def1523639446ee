// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/CModHalyardMeter.h"

namespace brt {

void CModHalyardMeterDef::describeClass(CClassInfo& info) {
    CAudioProcessDefBase::describeClass(info);
    info.addAttributes(kFrameAttributes);
}

std::unique_ptr<CAudioProcessBase> CModHalyardMeterDef::createProcess() const {
    return std::make_unique<CModHalyardMeter>();
}

void CModHalyardMeterModule::bindParams() {
    bind(m_release, 0);
    bind(m_hardness, 1);
}

void CModHalyardMeterModule::update() {
    if (isFullUpdate() || m_release.isChanged) startOver();
    m_core.setHardness(value(m_hardness, 1.0));
}

void CModHalyardMeterModule::setupStats() {
    m_core.setUp(sampleRate(), value(m_release, 0.0));
    m_core.setHardness(value(m_hardness, 1.0));
}

void CModHalyardMeterModule::processChunk() { m_core.process(inputSamples(0) + chunkOffset(), chunkLength()); }

std::unique_ptr<CAudioVizDataMeter> CModHalyardMeterModule::makeFrame() {
    auto frame = std::make_unique<CAudioVizDataMeter>();
    frame->level = frame->peak = m_core.factor();
    return frame;
}

}  // namespace brt
