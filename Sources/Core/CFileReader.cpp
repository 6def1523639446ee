// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CFileReader.h"

#include "Core/CError.h"

namespace brt {

CError* CFileReader::open(const CString& path, bool forUpdate, FileKind kind) {
    CString wanted = path;  // may be the name of the file that is closed here
    BRT_TRY("", close());
    m_name = std::move(wanted);
    const int error = m_name == "*" ? attachTo(StandardStream::input, "stdin")
                                    : openPath(forUpdate ? FileMode::readWrite : FileMode::read, kind);
    if (error == 0) return nullptr;
    return makeError(nullptr, __FILE__, __LINE__, "",
                     "@brtstr_CFileReader_open_OpenError Unable to open file '%1' for reading (error %2).", m_name,
                     error);
}

CError* CFileReader::skip(int count) {
    if (count < 0) return CInputStream::skip(count);  // which refuses it
    std::int64_t position = 0;
    int error = m_file.getPosition(position);
    if (error == 0) error = m_file.setPosition(position + count);
    if (error == 0) return nullptr;
    return makeError(nullptr, __FILE__, __LINE__, "",
                     "@brtstr_CFileReader_skip_PosError Unable to increment file's '%1' position by %2 (error %3).",
                     m_name, count, error);
}

CError* CFileReader::read(void* buffer, int count) {
    std::size_t got = 0;
    const int error = count > 0 ? m_file.read(buffer, static_cast<std::size_t>(count), got) : 0;
    if (error != 0) {
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CFileReader_read_ReadError Unable to read from file '%1' (error %2).", m_name, error);
    }
    if (static_cast<int>(got) != count) {
        return makeError(
            nullptr, __FILE__, __LINE__, "",
            "@brtstr_CFileReader_read_ReadBeyondEnd Unable to read from file '%1' (required %2 bytes, read "
            "%3 bytes).",
            m_name, count, got);
    }
    return nullptr;
}

CError* CFileReader::readStreamed(void* buffer, int& count) {
    if (count <= 0) return read(buffer, count);
    std::size_t got = 0;
    const int error = m_file.readSome(buffer, static_cast<std::size_t>(count), got);
    if (error != 0) {
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CFileReader_readStreamed_ReadError Unable to read from file '%1' (error %2).", m_name,
                         error);
    }
    count = static_cast<int>(got);
    return nullptr;
}

}  // namespace brt
