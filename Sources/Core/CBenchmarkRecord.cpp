// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CBenchmarkRecord.h"
