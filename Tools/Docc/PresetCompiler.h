// SPDX-License-Identifier: LicenseRef-Halyard
// From the text of presets to the file that the program reads. Every value is checked against the definition of its
// parameter, which also turns text into what is stored.
// Threads: one at a time. REQUIRES: the application is started with the classes that the shared document names.
#pragma once

#include <cstdint>
#include <vector>

#include "Tools/Docc/CDiagnostics.h"

namespace brt {

class CObject;

// The file; empty if there are errors. `shared`: the root of the shared tree, which has the definitions.
std::vector<std::uint8_t> compilePresets(const CSourceText& source, const CObject& shared, CDiagnostics& diagnostics);

}  // namespace brt
