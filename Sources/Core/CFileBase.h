// SPDX-License-Identifier: LicenseRef-Halyard
// What a file that is read and a file that is written have in common: the open file, its name and its position.
// Owner: whoever made it; a file that is still open is closed by the destructor. Threads: one at a time.
#pragma once

#include "Core/CPosStream.h"
#include "Core/CString.h"
#include "Platform/CNativeFile.h"

namespace brt {

class CFileBase : public virtual CPosStream {
public:
    // Closed afterwards in any case; the name is kept if the system reports an error. A standard stream is only
    // detached from. Does nothing if not open.
    [[nodiscard]] CError* close();

    bool isOpen() const noexcept { return m_file.isOpen(); }
    // May what was opened be written?
    bool isWritable() const noexcept { return m_isWritable; }
    // The path as it was given, or "stdin", "stdout", "stderr". Empty before the first open.
    const CString& name() const noexcept { return m_name; }

    // Position and size.
    [[nodiscard]] CError* getPosition(std::int64_t& position) override;
    [[nodiscard]] CError* setPosition(std::int64_t position) override;
    [[nodiscard]] CError* getSize(std::int64_t& size) override;

protected:
    // Open what m_name tells, or a standard stream. Return the system's error code.
    int openPath(FileMode mode, FileKind kind);
    int attachTo(StandardStream stream, CStringView name);

    CNativeFile m_file;
    CString m_name;
    bool m_isWritable = false;
};

}  // namespace brt
