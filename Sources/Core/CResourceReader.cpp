// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CResourceReader.h"

#include "Core/CApplication.h"
#include "Core/CError.h"
#include "Core/CFileReader.h"
#include "Core/CMemoryReader.h"
#include "Core/CResourceMap.h"

namespace brt {

CError* CResourceReader::open(CStringView name) {
    close();
    if (const CResource* const resource = CApplication::resources().find(name)) {
        m_stream = std::make_unique<CMemoryReaderStatic>(resource->bytes, resource->size);
        return nullptr;
    }
    auto file = std::make_unique<CFileReader>();
    BRT_TRY("", file->open(name, false));
    m_stream = std::move(file);
    return nullptr;
}

// Runs an operation of the inner stream; its error gets the position of the caller.
template <class Operation>
CError* CResourceReader::forward(int line, Operation operation) {
    if (!m_stream)
        return makeError(nullptr, __FILE__, line, "",
                         "@brtstr_CResourceReader_NotOpen Neither a resource nor a file is open.");
    CError* const error = operation(*m_stream);
    return error ? makeError(error, __FILE__, line, "", "") : nullptr;
}

const void* CResourceReader::getDirectData() { return m_stream ? m_stream->getDirectData() : nullptr; }

CError* CResourceReader::skip(int count) {
    return forward(__LINE__, [&](CPosInputStream& stream) { return stream.skip(count); });
}

CError* CResourceReader::read(void* buffer, int count) {
    return forward(__LINE__, [&](CPosInputStream& stream) { return stream.read(buffer, count); });
}

CError* CResourceReader::readStreamed(void* buffer, int& count) {
    return forward(__LINE__, [&](CPosInputStream& stream) { return stream.readStreamed(buffer, count); });
}

CError* CResourceReader::getPosition(std::int64_t& position) {
    return forward(__LINE__, [&](CPosInputStream& stream) { return stream.getPosition(position); });
}

CError* CResourceReader::setPosition(std::int64_t position) {
    return forward(__LINE__, [&](CPosInputStream& stream) { return stream.setPosition(position); });
}

CError* CResourceReader::getSize(std::int64_t& size) {
    return forward(__LINE__, [&](CPosInputStream& stream) { return stream.getSize(size); });
}

}  // namespace brt
