// SPDX-License-Identifier: LicenseRef-Halyard
// Who listens to which events of the objects of one tree. Owner: the tree's context.
#pragma once

#include "Core/CBrtMemAllocator.h"

namespace brt {

class CEventRegistry : public CBrtMemAllocator {};

}  // namespace brt
