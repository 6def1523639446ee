// SPDX-License-Identifier: LicenseRef-Halyard
// Output to a file, or to standard output under the name "*" and to standard error under "*e". Others may read and
// write the file meanwhile. What must never be seen half-written goes through `CAtomicFileWriter`. Owner: whoever made
// it. Threads: one at a time.
#pragma once

#include "Core/CFileBase.h"

namespace brt {

class CFileWriter : public CPosOutputStream, public CFileBase {
public:
    // Closes what is open, then opens. The file is created if it doesn't exist; else it is emptied, or, with `append`,
    // kept and added to.
    [[nodiscard]] CError* open(const CString& path, bool append);

    // Writing.
    [[nodiscard]] CError* write(const void* buffer, int count) override;
};

}  // namespace brt
