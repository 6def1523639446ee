// SPDX-License-Identifier: LicenseRef-Halyard
// An open file of the system, or a standard stream that is attached to.
//
// Every operation returns the system's error code, 0 for success. Interrupted calls are taken up again, writing to a
// pipe without a reader gives an error and no signal, and no descriptor is inherited by programs that the host starts.
// Owner: one object; a file that is still open is closed by the destructor, which drops the error.
// Threads: one at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Platform/StandardStreams.h"

namespace brt {

// How a file is opened; where it starts, and what becomes of what is there.
enum class FileMode {
    read,       // must exist; at its beginning
    write,      // created, or emptied
    append,     // created, or kept; at its end. Writing only
    readWrite,  // created, or kept; at its beginning
};

enum class FileKind {
    any,      // also devices and pipes
    regular,  // everything else is refused, before a byte is read: for what a folder of the user brings in
};

// Who may read and write a file that didn't exist before.
enum class NewFileAccess {
    asUsual,   // as the user's own programs make files
    userOnly,  // nobody but the user
};

class CNativeFile {
public:
    CNativeFile() noexcept = default;
    ~CNativeFile() { static_cast<void>(close()); }
    CNativeFile(const CNativeFile&) = delete;
    CNativeFile& operator=(const CNativeFile&) = delete;

    // [any] Closes what is open, then opens. Never waits, also not for the other end of a named pipe.
    // A directory gives `kErrorIsDirectory` in every mode.
    [[nodiscard]] int open(std::u16string_view path, FileMode mode, FileKind kind = FileKind::any);

    // [any] Attaches to a standard stream. One that the process was started without gives `kErrorNotOpen`.
    [[nodiscard]] int openStandard(StandardStream stream);

    // [any] Creates a new empty file for reading and writing in the folder of `target`, to be renamed to it when
    // complete. It gets the access rights of `target` if that exists, which must be a regular file then. Its name is
    // ".", the target's name, "." and 12 letters; `removeOldTemporaries` finds it if it is forgotten.
    // A target that is a link would be replaced by the rename: pass what `followLinks` gives.
    [[nodiscard]] int createTemporaryBeside(std::u16string_view target, std::u16string& temporaryPath,
                                            NewFileAccess access = NewFileAccess::asUsual);

    // [any] Closed afterwards in any case; a standard stream is only detached from. Does nothing if not open.
    [[nodiscard]] int close();

    [[nodiscard]] bool isOpen() const noexcept { return m_descriptor >= 0; }

    // [any] Reads until `count` bytes are there or the file ends; `got` tells how many came, after an error too.
    [[nodiscard]] int read(void* buffer, std::size_t count, std::size_t& got);

    // [any] Reads what is there, at least one byte: for pipes, which deliver in pieces. `got` is 0 only at the end.
    [[nodiscard]] int readSome(void* buffer, std::size_t count, std::size_t& got);

    // [any] Writes all, or fails; `written` tells how much went out before the error.
    [[nodiscard]] int write(const void* buffer, std::size_t count, std::size_t& written);

    // [any] Bytes from the beginning. A position beyond the end is allowed; writing there leaves a gap of zeros.
    [[nodiscard]] int getPosition(std::int64_t& position) const;
    [[nodiscard]] int setPosition(std::int64_t position);

    // [any] In bytes. Regular files only; others have no size.
    [[nodiscard]] int getSize(std::int64_t& size) const;

    // [any] Returns when everything written has reached the storage.
    [[nodiscard]] int flush();

    // [any] Takes the file's advisory lock, which keeps out whoever asks for it too, in this process or another.
    // Tries for that long, 0 once; then `kErrorLockedByOther`. Closing the file gives it back, as does the end of the
    // process.
    [[nodiscard]] int lock(double waitSeconds);
    void unlock() noexcept;

private:
    int prepareOpened(FileMode mode, FileKind kind);
    int closeWith(int error);

    int m_descriptor = -1;
    bool m_isStandard = false;
    bool m_isRegular = false;
};

}  // namespace brt
