// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CInputZipStream.h"

#include "Core/CError.h"

namespace brt {

CInputZipStream::~CInputZipStream() {
    discardError(close());  // nothing is lost by it
}

CError* CInputZipStream::open(CInputStream& source) {
    BRT_TRY("", close());
    m_zlib.msg = nullptr;
    m_hasEnded = false;
    BRT_TRY("", refill(source));
    const int result = inflateInit(&m_zlib);
    if (result != Z_OK) {
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CInputZipStream_open_inflateInit zlib inflateInit error %1 (%2).", result,
                         zlibMessage());
    }
    m_source = &source;
    return nullptr;
}

CError* CInputZipStream::close() {
    if (m_source == nullptr) return nullptr;
    m_source = nullptr;
    const int result = inflateEnd(&m_zlib);
    if (result != Z_OK) {
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CInputZipStream_close_inflateEnd zlib inflateEnd error %1 (%2).", result,
                         zlibMessage());
    }
    return nullptr;
}

CError* CInputZipStream::refill(CInputStream& source) {
    int count = kBufferBytes;
    BRT_TRY("", source.readStreamed(m_buffer, count));
    m_zlib.next_in = m_buffer;
    m_zlib.avail_in = static_cast<uInt>(count);
    return nullptr;
}

// Inflates what there is into the room that zlib has been given. Each call takes or gives at least one byte, or fails.
CError* CInputZipStream::inflateStep() {
    if (!m_hasEnded && m_zlib.avail_in == 0) BRT_TRY("", refill(*m_source));
    if (m_hasEnded || m_zlib.avail_in == 0) {
        return makeError(nullptr, __FILE__, __LINE__, "", "@brtstr_CInputZipStream_read_EOF Premature end of file.");
    }
    const int result = inflate(&m_zlib, Z_SYNC_FLUSH);
    m_hasEnded = result == Z_STREAM_END;
    if (result != Z_OK && !m_hasEnded) return inflateError(result, zlibMessage());
    return nullptr;
}

CError* CInputZipStream::inflateError(int code, CStringView reason) {
    return makeError(nullptr, __FILE__, __LINE__, "",
                     "@brtstr_CInputZipStream_read_inflate zlib inflate error %1 (%2).", code, reason);
}

CError* CInputZipStream::read(void* buffer, int count) {
    if (m_source == nullptr) {
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CInputZipStream_read_NoStream Input stream not specified.");
    }
    if (count < 0) return inflateError(Z_STREAM_ERROR, "negative count");
    m_zlib.next_out = static_cast<Bytef*>(buffer);
    m_zlib.avail_out = static_cast<uInt>(count);
    while (m_zlib.avail_out > 0) BRT_TRY("", inflateStep());
    return nullptr;
}

CError* CInputZipStream::expectEnd() {
    if (m_source == nullptr) {
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CInputZipStream_read_NoStream Input stream not specified.");
    }
    Bytef spare = 0;
    m_zlib.next_out = &spare;
    m_zlib.avail_out = 1;
    while (!m_hasEnded) {
        BRT_TRY("", inflateStep());
        if (m_zlib.avail_out == 0) return inflateError(Z_BUF_ERROR, "more data than its size tells");
    }
    return nullptr;
}

}  // namespace brt
