// SPDX-License-Identifier: LicenseRef-Halyard
// This product's classes, documents and files, ready for instances. Threads: any.
#pragma once

namespace brt {

// [any] Makes what all instances share, unless it is there. False if it can't be made; a user has been told why.
bool startProduct();

}  // namespace brt
