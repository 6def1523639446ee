// SPDX-License-Identifier: LicenseRef-Halyard
// What is done differently for some hosts, by the names that they give themselves. Owner: any. Threads: any; read only
// once it is made.
#pragma once

#include "Core/CString.h"

namespace brt {

struct CHostBehaviour {
    bool isMultichannelAllowed = true;
    bool needsFunctionLock = false;  // calls activation and blocks at the same time
    bool hasAutoRouting = true;      // new channel names mean a new routing
    bool focusesOnClick = true;      // windows may take the keyboard

    // `version`: of the interface, as the host knows it. `product` and `vendor` in any case. The last two are the
    // user's settings.
    static CHostBehaviour find(int version, CStringView product, CStringView vendor, bool isForced2ch,
                               bool isLockAsked);
};

// Of the whole text: "*" stands for any run of characters, "?" for any one.
bool matchesWildcard(CStringView text, CStringView pattern) noexcept;

}  // namespace brt
