// SPDX-License-Identifier: LicenseRef-Halyard
// How definitions write the names of parameters: from where the process of the definition stands.
// Threads: any.
#pragma once

#include "Core/CString.h"

namespace brt {

// [any] The full name that `name` means in a process at `basePath`, for "plugin.modMain.modHal":
//     "ingain"           plugin.modMain.modHal.ingain     below the process
//     "^bypass-enable"   plugin.modMain.bypass-enable     beside it; each further "^" is one level up
//     "^"                plugin.modMain
//     "/plugin.ab"       plugin.ab                        absolute
// More "^" than the path has levels lead to an empty path.
CString resolveParamName(CStringView name, CStringView basePath);

}  // namespace brt
