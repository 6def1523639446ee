// SPDX-License-Identifier: LicenseRef-Halyard
#include "Documents/Product.h"

#include "Core/CApplication.h"
#include "Documents/ProductTags.h"
#include "Documents/Resources.h"
#include "Platform/CCriticalSection.h"

namespace brt {

// Several may ask at once; the shared tree can be seen while it is still being built.
bool startProduct() {
    static constinit CCriticalSection s_lock;
    const CLock lock(s_lock);
    if (CApplication::sharedObject() == nullptr) CApplication::start({productTags(), kHalyardResources});
    return CApplication::sharedObject() != nullptr;
}

}  // namespace brt
