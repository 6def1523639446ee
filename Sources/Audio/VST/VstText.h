// SPDX-License-Identifier: LicenseRef-Halyard
// Texts of the interface: 8-bit, with a NUL behind, in room of a fixed size. Threads: any.
#pragma once

#include "Core/CStringView.h"

namespace brt {

// Writes what fits into `room` bytes with a NUL behind; code points above 255 become "?". False for a null buffer.
bool writeVstText(void* buffer, CStringView text, int room) noexcept;

// A text of the host's, up to its NUL or `limit` bytes; empty for null.
CStringView readVstText(const void* text, int limit = 255) noexcept;

}  // namespace brt
