// SPDX-License-Identifier: LicenseRef-Halyard
// The wrapper of a definition that asks for frequency bands. No document of this product has one; it checks what such
// a definition must say, and refuses to run it.
// Owner: the graph. Threads: see CAudioProcessBase.
#pragma once

#include "Audio/CAudioProcessBase.h"

namespace brt {

class CAudioProcessMB final : public CAudioProcessBase {
public:
    CAudioProcessMB() { setContainer(); }
    [[nodiscard]] CError* init() override;
};

}  // namespace brt
