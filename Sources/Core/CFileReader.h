// SPDX-License-Identifier: LicenseRef-Halyard
// Input from a file, or from standard input under the name "*". Others may read and write the file meanwhile.
// Owner: whoever made it. Threads: one at a time.
#pragma once

#include "Core/CFileBase.h"

namespace brt {

class CFileReader : public CPosInputStream, public CFileBase {
public:
    // Closes what is open, then opens at the file's beginning. `forUpdate`: for others to write through the same file
    // as well; it is created if it doesn't exist. `kind`: `FileKind::regular` where the user's folders are read, so
    // that a pipe or a device in place of a file can't stop the caller. A directory is refused.
    [[nodiscard]] CError* open(const CString& path, bool forUpdate, FileKind kind = FileKind::any);

    // Reading.
    [[nodiscard]] CError* skip(int count) override;
    [[nodiscard]] CError* read(void* buffer, int count) override;
    [[nodiscard]] CError* readStreamed(void* buffer, int& count) override;
};

}  // namespace brt
