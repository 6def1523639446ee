// SPDX-License-Identifier: LicenseRef-Halyard
// Output that replaces a file as a whole: readers see the old content or the new, whatever happens meanwhile, and a
// failure, a crash or a second writer leaves one of them complete.
//
// The bytes go to a temporary file beside the target. commit() waits until they have reached the storage and renames
// the file over the target. A target that is a symbolic link stays one; the file that it leads to is replaced. A new
// file can be read and written by its user alone, an existing one keeps its access rights. Owner: whoever made it;
// without commit() the destructor removes the temporary file. Threads: one at a time.
#pragma once

#include <string>

#include "Core/COutputStream.h"
#include "Core/CString.h"
#include "Platform/CNativeFile.h"

namespace brt {

class CAtomicFileWriter : public COutputStream {
public:
    CAtomicFileWriter() = default;
    ~CAtomicFileWriter() override { abandon(); }

    // Abandons what is open, then begins a new content for `path`.
    [[nodiscard]] CError* open(const CString& path);

    // Writing. After a failure commit() refuses.
    [[nodiscard]] CError* write(const void* buffer, int count) override;

    // Puts the content in place. On failure the target is what it was; closed afterwards in any case.
    [[nodiscard]] CError* commit();

    // Drops the content. Does nothing if not open.
    void abandon() noexcept;

private:
    [[nodiscard]] CError* replaceTarget();

    CNativeFile m_file;
    CString m_name;              // as given, for messages
    std::u16string m_target;     // with links followed
    std::u16string m_temporary;  // empty when closed
    bool m_hasFailed = false;
};

}  // namespace brt
