// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/COutputZipStream.h"

#include "Core/CError.h"

namespace brt {

COutputZipStream::~COutputZipStream() {
    static_cast<void>(abandon());  // what is missing in the sink is missing, whatever zlib says
}

CError* COutputZipStream::open(COutputStream& sink, int level) {
    BRT_TRY("", close());
    m_zlib.msg = nullptr;
    const int result = deflateInit(&m_zlib, level);
    if (result != Z_OK) {
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_COutputZipStream_open_deflateInit zlib deflateInit error %1 (%2).", result,
                         zlibMessage());
    }
    m_zlib.next_out = m_buffer;
    m_zlib.avail_out = kBufferBytes;
    m_sink = &sink;
    return nullptr;
}

CError* COutputZipStream::write(const void* buffer, int count) {
    if (m_sink == nullptr) {
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_COutputZipStream_write_NoStream Output stream not specified.");
    }
    CError* const error = deflateAll(buffer, count);
    if (error != nullptr) static_cast<void>(abandon());  // the first failure is the one to tell
    return error;
}

CError* COutputZipStream::deflateAll(const void* buffer, int count) {
    if (count < 0) return deflateError(Z_STREAM_ERROR, "negative count");
    // zlib asks for a pointer to non-const bytes, which it doesn't write.
    m_zlib.next_in = static_cast<Bytef*>(const_cast<void*>(buffer));
    m_zlib.avail_in = static_cast<uInt>(count);
    while (m_zlib.avail_in > 0) {
        const int result = deflate(&m_zlib, Z_NO_FLUSH);
        if (result != Z_OK) return deflateError(result, zlibMessage());
        if (m_zlib.avail_out == 0) BRT_TRY("", flushBuffer());
    }
    return nullptr;
}

CError* COutputZipStream::deflateError(int code, CStringView reason) {
    return makeError(nullptr, __FILE__, __LINE__, "",
                     "@brtstr_COutputZipStream_write_deflate zlib deflate error %1 (%2).", code, reason);
}

CError* COutputZipStream::close() {
    if (m_sink == nullptr) return nullptr;
    CError* const error = finish();
    const int result = abandon();
    if (error != nullptr || result == Z_OK) return error;
    return makeError(nullptr, __FILE__, __LINE__, "",
                     "@brtstr_COutputZipStream_close_deflateEnd zlib deflateEnd error %1 (%2).", result, zlibMessage());
}

CError* COutputZipStream::finish() {
    m_zlib.avail_in = 0;
    for (;;) {
        const int result = deflate(&m_zlib, Z_FINISH);
        if (result != Z_OK && result != Z_STREAM_END) {
            return makeError(nullptr, __FILE__, __LINE__, "",
                             "@brtstr_COutputZipStream_close_deflate zlib deflate error %1 (%2).", result,
                             zlibMessage());
        }
        if (result == Z_STREAM_END || m_zlib.avail_out == 0) BRT_TRY("", flushBuffer());
        if (result == Z_STREAM_END) return nullptr;
    }
}

// Writes what stands in the buffer and starts it again.
CError* COutputZipStream::flushBuffer() {
    const int used = kBufferBytes - static_cast<int>(m_zlib.avail_out);
    m_zlib.next_out = m_buffer;
    m_zlib.avail_out = kBufferBytes;
    if (used > 0) BRT_TRY("", m_sink->write(m_buffer, used));
    return nullptr;
}

// Frees zlib's memory; returns its code.
int COutputZipStream::abandon() {
    if (m_sink == nullptr) return Z_OK;
    m_sink = nullptr;
    return deflateEnd(&m_zlib);
}

}  // namespace brt
