// SPDX-License-Identifier: LicenseRef-Halyard
// All steps from the text of a document to its compiled form.
// Threads: one at a time. REQUIRES: the application is started; which classes it has counts nothing.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "Core/CCreatorRegistry.h"
#include "Tools/Docc/CDiagnostics.h"
#include "Tools/Docc/CElement.h"

namespace brt {

// What a document is held against.
struct CompileContext {
    std::span<const std::span<const CCreatorRow>> tables;  // the classes that documents may name
    const CElement* shared = nullptr;                      // null: the document is the shared one itself
    const COrderedSet<CString>* resources = nullptr;       // all names; null: they aren't checked
};

// Empty if there are errors. Throws std::runtime_error where the document is too large for its form.
std::vector<std::uint8_t> compileText(const CSourceText& source, const CompileContext& context,
                                      CDiagnostics& diagnostics);

}  // namespace brt
