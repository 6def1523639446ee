// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/CPendingFile.h"

#include <algorithm>
#include <system_error>

#include "Platform/FileSystem.h"
#include "Platform/PathText.h"
#include "Platform/SystemError.h"
#include "Tools/Halyard/ToolError.h"

namespace brt {

namespace {

namespace fs = std::filesystem;

bool isDevice(const fs::path& path) {
    std::error_code ignored;
    const fs::file_status status = fs::status(path, ignored);
    return fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status);
}

// The absolute path with links followed; the last step need not exist.
fs::path resolved(const fs::path& path) {
    std::error_code error;
    const fs::path result = fs::weakly_canonical(path, error);
    return error ? fs::absolute(path) : result;
}

}  // namespace

void checkDestination(const fs::path& destination, bool mayReplace) {
    const std::string what = "cannot write " + quoted(destination) + ": ";
    std::error_code ignored;
    const fs::path folder = destination.has_parent_path() ? destination.parent_path() : fs::path(".");
    if (destination.filename().empty() || fs::is_directory(destination, ignored))
        throw CToolError(what + "it is a folder; name a file in it");
    if (!fs::is_directory(folder, ignored))
        throw CToolError(what + "there is no folder " + quoted(folder) + "; make it first or name another");
    const fs::file_status status = fs::status(destination, ignored);
    if (fs::is_fifo(status) || fs::is_socket(status))
        throw CToolError(what + "it is a pipe, and a sound file's header is written last; name a file");
    if (!fs::exists(status) && fs::is_symlink(fs::symlink_status(destination, ignored)))
        throw CToolError(what + "it is a link that leads nowhere; remove it or choose another name");
    if (!mayReplace && fs::exists(status) && !isDevice(destination))
        throw CToolError(what + "it exists already; choose another name, or add --force to replace it");
}

bool isSameFile(const fs::path& a, const fs::path& b) {
    std::error_code ignored;
    return fs::equivalent(a, b, ignored) || resolved(a) == resolved(b);
}

CPendingFile::CPendingFile(const fs::path& destination, bool mayReplace)
    : m_name(destination), m_mayReplace(mayReplace) {
    checkDestination(destination, mayReplace);
    const fs::path target = resolved(destination);
    m_destination = pathFromSystem(target.string());
    const int error = isDevice(target) ? m_file.open(m_destination, FileMode::write)
                                       : m_file.createTemporaryBeside(m_destination, m_temporary);
    if (error) fail(error);
}

CPendingFile::~CPendingFile() {
    if (m_temporary.empty()) return;
    static_cast<void>(m_file.close());
    static_cast<void>(removeFile(m_temporary));
}

bool CPendingFile::write(const void* bytes, std::size_t count) noexcept {
    if (m_systemError) return false;
    std::size_t written = 0;
    m_systemError = m_file.write(bytes, count, written);
    m_position += static_cast<std::int64_t>(written);
    m_length = std::max(m_length, m_position);
    return m_systemError == 0;
}

bool CPendingFile::seek(std::int64_t position) noexcept {
    // A device that can't be positioned still takes what comes in order.
    if (m_systemError == 0 && position != m_position) m_systemError = m_file.setPosition(position);
    if (m_systemError == 0) m_position = position;
    return m_systemError == 0;
}

std::size_t CPendingFile::read(void* bytes, std::size_t count) noexcept {
    std::size_t got = 0;
    if (m_systemError == 0) m_systemError = m_file.read(bytes, count, got);
    m_position += static_cast<std::int64_t>(got);
    return got;
}

void CPendingFile::throwIfFailed() const {
    if (m_systemError) fail(m_systemError);
}

void CPendingFile::finish() {
    if (m_isFinished) return;
    throwIfFailed();
    if (const int error = m_file.close()) fail(error);
    m_isFinished = true;
}

void CPendingFile::commit() {
    finish();
    if (m_temporary.empty()) return;
    // A file of that name may have come into being while this one was written.
    checkDestination(pathToSystem(m_destination), m_mayReplace);
    if (const int error = renameFile(m_temporary, m_destination)) fail(error);
    m_temporary.clear();
}

void CPendingFile::fail(int systemError) const {
    const std::error_code code(systemError, std::generic_category());
    const bool isFull = code == std::errc::no_space_on_device || code == std::errc::file_too_large;
    throw CToolError(
        "cannot write " + quoted(m_name) + ": " + systemErrorText(systemError) +
        (isFull ? "; free some space or write to another disk" : "; check the name and who may write there"));
}

}  // namespace brt
