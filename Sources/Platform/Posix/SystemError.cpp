// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/SystemError.h"

#include <cerrno>
#include <cstring>

namespace brt {

const int kErrorNotFound = ENOENT;
const int kErrorExists = EEXIST;
const int kErrorNotOpen = EBADF;
const int kErrorIsDirectory = EISDIR;
const int kErrorNotRegular = ENOTSUP;
const int kErrorLockedByOther = EWOULDBLOCK;
const int kErrorQueueFull = ENOBUFS;
const int kErrorWouldDeadlock = EDEADLK;
const int kErrorWrongThread = EPERM;

const char* systemErrorText(int error) noexcept {
    const char* const text = strerrordesc_np(error);
    return text != nullptr ? text : "Unknown error";
}

}  // namespace brt
