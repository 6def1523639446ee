// SPDX-License-Identifier: LicenseRef-Halyard
// The binary form of a document (Core/CDocument.h tells it), both ways.
// Threads: any. Errors: std::runtime_error, whose text is the reason alone.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "Tools/Docc/CElement.h"

namespace brt {

std::vector<std::uint8_t> compileDocument(const CElement& root);

// `name` is for messages.
std::unique_ptr<CElement> readCompiledDocument(std::span<const std::uint8_t> bytes, CStringView name);

}  // namespace brt
