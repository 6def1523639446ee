// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/CModHalyard.h"

#include "Modules/CHalyardCoreStock.h"

namespace brt {

void CModHalyardDef::describeClass(CClassInfo& info) { CAudioProcessDefBase::describeClass(info); }

std::unique_ptr<CAudioProcessBase> CModHalyardDef::createProcess() const { return std::make_unique<CModHalyard>(); }

CModHalyardModule::CModHalyardModule(CAudioProcessTerminalBase& process)
    : CAudioModule(process),
      m_core(context().cores != nullptr ? context().cores->take() : std::make_unique<CHalyardCore>()) {}

CModHalyardModule::~CModHalyardModule() {
    if (context().cores != nullptr) context().cores->give(std::move(m_core));
}

void CModHalyardModule::bindParams() {
    bind(m_hardness, 0);
    bind(m_residue, 1);
}

void CModHalyardModule::update() {
    if (isFullUpdate()) {
        setLatency(0, m_core->latencySamples());
        m_core->reset();
    }
    m_core->hardness = value(m_hardness, 1.0);
    m_core->residue = value(m_residue, 0.0) >= 0.5;
}

void CModHalyardModule::process() {
    CAudioBufferRef out = pool().takeBlock(blockLength());
    m_core->processBlock(inputSamples(0), out.samples(), blockLength());
    output(0).buffer = std::move(out);
}

}  // namespace brt
