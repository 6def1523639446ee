// SPDX-License-Identifier: LicenseRef-Halyard
// How failed expectations show our texts.
#pragma once

#include <ostream>

#include "Core/CString.h"

namespace brt {

inline void PrintTo(const CString& text, std::ostream* out) {
    *out << (text.isWide() ? "u\"" : "\"") << text.toUtf8() << '"';
}
inline void PrintTo(CStringView text, std::ostream* out) { PrintTo(CString(text), out); }

}  // namespace brt
