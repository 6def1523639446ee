// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CAtomicFileWriter.h"

#include "Core/CError.h"
#include "Platform/FileSystem.h"

namespace brt {

CError* CAtomicFileWriter::open(const CString& path) {
    abandon();
    m_name = path;
    int error = followLinks(m_name.toPath(), m_target);
    if (error == 0) error = m_file.createTemporaryBeside(m_target, m_temporary, NewFileAccess::userOnly);
    if (error == 0) return nullptr;
    return makeError(
        nullptr, __FILE__, __LINE__, "",
        "@brtstr_CAtomicFileWriter_open_CreateError Unable to make a file beside '%1' to replace it (error "
        "%2).",
        m_name, error);
}

CError* CAtomicFileWriter::write(const void* buffer, int count) {
    std::size_t written = 0;
    const int error = count > 0 ? m_file.write(buffer, static_cast<std::size_t>(count), written) : 0;
    if (static_cast<int>(written) == count) return nullptr;
    m_hasFailed = true;
    return makeError(nullptr, __FILE__, __LINE__, "",
                     "@brtstr_CAtomicFileWriter_write_WriteError Unable to write to the file that replaces '%1' "
                     "(required %2 bytes, written %3 bytes, error %4).",
                     m_name, count, written, error);
}

CError* CAtomicFileWriter::commit() {
    CError* const failure = replaceTarget();
    abandon();
    return failure;
}

CError* CAtomicFileWriter::replaceTarget() {
    if (m_hasFailed || !m_file.isOpen()) {
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CAtomicFileWriter_commit_Incomplete File '%1' is kept: what was to replace it isn't "
                         "complete.",
                         m_name);
    }
    int error = m_file.flush();
    if (error == 0) error = m_file.close();
    if (error == 0) error = renameFile(m_temporary, m_target);
    if (error != 0) {
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CAtomicFileWriter_commit_ReplaceError Unable to replace file '%1' (error %2).",
                         m_name, error);
    }
    m_temporary.clear();
    return nullptr;
}

void CAtomicFileWriter::abandon() noexcept {
    static_cast<void>(m_file.close());  // it goes anyway
    if (!m_temporary.empty()) static_cast<void>(removeFile(m_temporary));
    m_temporary.clear();
    m_hasFailed = false;
}

}  // namespace brt
