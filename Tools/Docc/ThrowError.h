// SPDX-License-Identifier: LicenseRef-Halyard
// From the framework's errors to the exceptions of a tool. Threads: any.
#pragma once

namespace brt {

class CError;

// Throws std::runtime_error with the error's message, and deletes the error. Null is none.
void throwIf(CError* error);

}  // namespace brt
