// SPDX-License-Identifier: LicenseRef-Halyard
#pragma once
