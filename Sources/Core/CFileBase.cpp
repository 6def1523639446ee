// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CFileBase.h"

#include "Core/CError.h"

namespace brt {

CError* CFileBase::close() {
    m_isWritable = false;
    const int error = m_file.close();
    if (error != 0) {
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CFileBase_close_CloseError Unable to close file '%1' (error %2).", m_name, error);
    }
    m_name.clear();
    return nullptr;
}

int CFileBase::openPath(FileMode mode, FileKind kind) {
    const int error = m_file.open(m_name.toPath(), mode, kind);
    m_isWritable = error == 0 && mode != FileMode::read;
    return error;
}

int CFileBase::attachTo(StandardStream stream, CStringView name) {
    m_name = name;
    const int error = m_file.openStandard(stream);
    m_isWritable = error == 0 && stream != StandardStream::input;
    return error;
}

CError* CFileBase::getPosition(std::int64_t& position) {
    const int error = m_file.getPosition(position);
    if (error == 0) return nullptr;
    return makeError(nullptr, __FILE__, __LINE__, "",
                     "@brtstr_CFileBase_getPosition_PosError Unable to get file's '%1' position (error %2).", m_name,
                     error);
}

CError* CFileBase::setPosition(std::int64_t position) {
    const int error = m_file.setPosition(position);
    if (error == 0) return nullptr;
    return makeError(nullptr, __FILE__, __LINE__, "",
                     "@brtstr_CFileBase_setPosition_PosError Unable to set file's '%1' position to %2 (error %3).",
                     m_name, position, error);
}

CError* CFileBase::getSize(std::int64_t& size) {
    const int error = m_file.getSize(size);
    if (error == 0) return nullptr;
    return makeError(nullptr, __FILE__, __LINE__, "",
                     "@brtstr_CFileBase_getSize_FileSizeError Unable to get file's '%1' size (error %2).", m_name,
                     error);
}

}  // namespace brt
