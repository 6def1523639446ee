// SPDX-License-Identifier: LicenseRef-Halyard
// The system's error codes, as the operations of this floor return them: 0 is success.
// Threads: any.
#pragma once

namespace brt {

// [any] What the code means, in English whatever the locale: "No such file or directory". Never null; static text.
const char* systemErrorText(int error) noexcept;

// Codes that callers tell apart or give themselves.
extern const int kErrorNotFound;       // nothing of that name
extern const int kErrorExists;         // something of that name is there already
extern const int kErrorNotOpen;        // the file or standard stream is not open
extern const int kErrorIsDirectory;    // a directory where a file was wanted
extern const int kErrorNotRegular;     // a device, pipe or socket where a regular file was wanted
extern const int kErrorLockedByOther;  // the lock of the file is held elsewhere
extern const int kErrorQueueFull;      // more messages wait than a queue takes
extern const int kErrorWouldDeadlock;  // the operation would wait for its own caller
extern const int kErrorWrongThread;    // the object belongs to another thread

}  // namespace brt
