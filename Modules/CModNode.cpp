// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/CModNode.h"

namespace brt {

std::unique_ptr<CAudioProcessBase> CModNodeDef::createProcess() const { return std::make_unique<CModNode>(); }

void CModNode::update() {
    if (isUpdateInProgress()) setOutputTable(mainPort().table(), sampleRate());
}

void CModNode::process() {
    prepare();
    beginDelivery();
    for (int i = 0; i < mainPort().channelCount(); ++i)
        deliver(0, mainPort().channel(i).number, mainPort().channel(i).buffer);
    releaseInputs();
}

}  // namespace brt
