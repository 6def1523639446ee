// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CFileWriter.h"

#include "Core/CError.h"

namespace brt {

CError* CFileWriter::open(const CString& path, bool append) {
    CString wanted = path;  // may be the name of the file that is closed here
    BRT_TRY("", close());
    m_name = std::move(wanted);
    int error = 0;
    if (m_name == "*")
        error = attachTo(StandardStream::output, "stdout");
    else if (m_name == "*e")
        error = attachTo(StandardStream::error, "stderr");
    else
        error = openPath(append ? FileMode::append : FileMode::write, FileKind::any);
    if (error == 0) return nullptr;
    return makeError(nullptr, __FILE__, __LINE__, "",
                     "@brtstr_CFileWriter_open_OpenError Unable to open file '%1' for %2 (error %3).", m_name,
                     append ? "appending" : "rewriting", error);
}

CError* CFileWriter::write(const void* buffer, int count) {
    std::size_t written = 0;
    const int error = count > 0 ? m_file.write(buffer, static_cast<std::size_t>(count), written) : 0;
    CError* failure = nullptr;
    if (error != 0) {
        failure =
            makeError(nullptr, __FILE__, __LINE__, "",
                      "@brtstr_CFileWriter_write_WriteError Unable to write to file '%1' (error %2).", m_name, error);
    }
    // A disk that becomes full takes a part. Also for a negative count.
    if (static_cast<int>(written) != count && (written > 0 || error == 0)) {
        failure = makeError(failure, __FILE__, __LINE__, "",
                            "@brtstr_CFileWriter_write_WriteErrorCount Unable to write to file '%1' (required %2 "
                            "bytes, written %3 bytes).",
                            m_name, count, written);
    }
    return failure;
}

}  // namespace brt
