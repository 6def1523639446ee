// SPDX-License-Identifier: LicenseRef-Halyard
// A file that comes into being all at once: it is written beside its destination under a name of its own and takes the
// destination's place by a rename when it is complete. Whatever ends it earlier leaves the destination untouched and
// nothing behind. A device such as /dev/null is written straight into. Owner: who writes. Threads: one at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

#include "Platform/CNativeFile.h"

namespace brt {

// [any] Throws CToolError if nothing can be written there: the path is a folder, a pipe or a link that leads nowhere,
// its folder is missing, or a file stands there already and must not be replaced.
void checkDestination(const std::filesystem::path& destination, bool mayReplace);

// [any] True if both lead to one file, which need not exist.
bool isSameFile(const std::filesystem::path& a, const std::filesystem::path& b);

class CPendingFile {
public:
    // Links are followed: the file that they lead to is the one replaced. Throws CToolError.
    CPendingFile(const std::filesystem::path& destination, bool mayReplace);
    ~CPendingFile();
    CPendingFile(const CPendingFile&) = delete;
    CPendingFile& operator=(const CPendingFile&) = delete;

    // False after a failure of the system; the reason of the first one stays for throwIfFailed() and commit().
    bool write(const void* bytes, std::size_t count) noexcept;
    bool seek(std::int64_t position) noexcept;

    // Bytes read; fewer than asked for at the end or after a failure.
    std::size_t read(void* bytes, std::size_t count) noexcept;

    std::int64_t position() const noexcept { return m_position; }
    std::int64_t length() const noexcept { return m_length; }

    // Throws CToolError if any operation so far has failed.
    void throwIfFailed() const;

    // The file is complete: hands all of it to the system, which may find only now that the disk is full. Who makes
    // several files finishes all before the first commit. Throws CToolError.
    void finish();

    // Finishes, and puts the file in its place. Throws CToolError; the destination is untouched then.
    void commit();

private:
    [[noreturn]] void fail(int systemError) const;

    const std::filesystem::path m_name;  // as the user wrote it
    const bool m_mayReplace;
    std::u16string m_destination;  // absolute, links followed
    std::u16string m_temporary;    // empty where the destination itself is written into
    CNativeFile m_file;
    std::int64_t m_position = 0;
    std::int64_t m_length = 0;
    int m_systemError = 0;  // of the first failure
    bool m_isFinished = false;
};

}  // namespace brt
