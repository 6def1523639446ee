// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CZipStream.h"

#include "Core/CBrtMemAllocator.h"
#include "Core/CString.h"

namespace brt {

CZipStream::CZipStream() noexcept {
    m_zlib.zalloc = &CBrtMemAllocator::zlibAlloc;
    m_zlib.zfree = &CBrtMemAllocator::zlibFree;
}

CString CZipStream::zlibMessage() const { return m_zlib.msg; }

}  // namespace brt
