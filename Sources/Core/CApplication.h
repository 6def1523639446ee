// SPDX-License-Identifier: LicenseRef-Halyard
// The process-wide side of the object tree: the classes behind the tags, the resources, and the shared tree under
// "shared::", from which all instances take what never changes.
//
// `start` runs once a process or load of the module, before any instance; the end comes in the order of CProcess.h.
// Threads: `start` alone; everything else is only read afterwards, from any thread.
#pragma once

#include <span>

#include "Core/CCreatorRegistry.h"
#include "Core/CResourceMap.h"

namespace brt {

struct CApplicationSetup {
    std::span<const std::span<const CCreatorRow>> creatorTables = {};  // one for each floor
    const CResourceRow* resources = nullptr;
    CStringView sharedDocument = "SharedData.xml";  // empty: a shared tree without children
};

class CApplication {
public:
    // [init] An error of a table or of the shared document is shown; then the table's remaining classes, or the shared
    // tree, don't exist, and an instance that needs them fails.
    static void start(const CApplicationSetup& setup);

    // [init] Makes the shared tree, and freezes it when it stands.
    [[nodiscard]] static CError* initSharedObject(CStringView documentName);

    // [any] Makes the root of an instance's or a window's tree: a plain object with a context of its own, complete and
    // with the document's children; empty for the empty name. On failure `root` is unchanged.
    [[nodiscard]] static CError* initRootObject(CObject*& root, CStringView documentName);

    // [any] Null if there is none.
    static CObject* sharedObject() noexcept;
    // [any] REQUIRES: started.
    static const CCreatorRegistry& creators() noexcept;
    static const CResourceMap& resources() noexcept;
};

}  // namespace brt
