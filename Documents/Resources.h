// SPDX-License-Identifier: LicenseRef-Halyard
// The files that are linked into the product: its documents, and later its fonts, pictures and presets. The build makes
// the table from the list in CMakeLists.txt. Threads: any; constants.
#pragma once

#include "Core/CResourceMap.h"

extern "C" const brt::CResourceRow kHalyardResources[];
