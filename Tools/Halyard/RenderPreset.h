// SPDX-License-Identifier: LicenseRef-Halyard
// The settings that a preset stands for: it is activated in an instance, as a window does it, and what the instance has
// then is what counts. Threads: one at a time.
#pragma once

#include <string>

#include "Tools/Halyard/CProcessor.h"

namespace brt {

// `nameOrFile`: a preset of the program's own bank by its name, or a file with one preset. Throws CToolError.
void usePreset(ProcessorSettings& settings, const std::string& nameOrFile);

}  // namespace brt
