// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Docc/ThrowError.h"

#include <stdexcept>
#include <string>

#include "Core/CError.h"

namespace brt {

void throwIf(CError* error) {
    if (!error) return;
    const std::string message = error->message().toUtf8();
    discardError(error);  // goes on as an exception
    throw std::runtime_error(message);
}

}  // namespace brt
