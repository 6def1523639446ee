// SPDX-License-Identifier: LicenseRef-Halyard
// What the tests of the streams share: the words of an error, and streams that behave worse than those of the product.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "Core/CByteBuffer.h"
#include "Core/CError.h"
#include "Core/CInputStream.h"
#include "Core/COutputStream.h"
#include "Core/CWriteSeqBuffer.h"

namespace brt {

using Bytes = std::vector<std::uint8_t>;

// The message of a failure; empty for success.
inline std::string failure(CError* error) {
    if (error == nullptr) return {};
    const std::string text = error->message().toUtf8();
    discardError(error);
    return text;
}

inline Bytes bytesOf(const CByteBuffer& buffer) { return {buffer.data(), buffer.data() + buffer.size()}; }

inline Bytes contentOf(CWriteSeqBuffer& chain) {
    CByteBuffer buffer;
    chain.moveTo(buffer);
    return bytesOf(buffer);
}

inline Bytes randomBytes(std::size_t count, unsigned seed) {
    std::mt19937 generator(seed);
    Bytes bytes(count);
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(generator());
    return bytes;
}

// A source without a size or a position, like a pipe: hands out at most `pieceBytes` at once.
class CPipeSource : public CInputStream {
public:
    CPipeSource(Bytes bytes, int pieceBytes) : m_bytes(std::move(bytes)), m_pieceBytes(pieceBytes) {}

    CError* read(void* buffer, int count) override {
        if (count > left()) return makeError(nullptr, __FILE__, __LINE__, "", "pipe ended");
        return take(buffer, count);
    }
    CError* readStreamed(void* buffer, int& count) override {
        count = std::min({count, left(), m_pieceBytes});
        return take(buffer, count);
    }
    int position() const { return m_position; }

private:
    int left() const { return static_cast<int>(m_bytes.size()) - m_position; }
    CError* take(void* buffer, int count) {
        if (count > 0) std::memcpy(buffer, m_bytes.data() + m_position, static_cast<std::size_t>(count));
        m_position += count;
        return nullptr;
    }

    Bytes m_bytes;
    int m_pieceBytes;
    int m_position = 0;
};

// A sink that takes so many bytes and then fails.
class CFullSink : public COutputStream {
public:
    explicit CFullSink(int roomBytes) : m_roomBytes(roomBytes) {}
    CError* write(const void*, int count) override {
        if (count > m_roomBytes) return makeError(nullptr, __FILE__, __LINE__, "", "sink is full");
        m_roomBytes -= count;
        return nullptr;
    }

private:
    int m_roomBytes;
};

}  // namespace brt
