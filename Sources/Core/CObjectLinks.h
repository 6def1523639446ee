// SPDX-License-Identifier: LicenseRef-Halyard
// What an object knows of others, and they of it, beyond the tree: what it listens to, its bridge to another thread,
// the attributes it follows and those that follow it. Most objects have nothing of the kind and so no record. Owner:
// the object. Threads: those of the object.
#pragma once

#include "Core/CBrtMemAllocator.h"

namespace brt {

class CObjectLinks : public CBrtMemAllocator {};

}  // namespace brt
