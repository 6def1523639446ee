// SPDX-License-Identifier: LicenseRef-Halyard
// Stored forms as tests write them down: little-endian numbers, doubles, counted strings.
#pragma once

#include <bit>
#include <cstdint>
#include <string_view>
#include <vector>

#include "Core/CMemoryReader.h"
#include "Core/StreamTestTools.h"

namespace brt {

class CBytes {
public:
    CBytes& u32(std::initializer_list<std::uint32_t> numbers) {
        for (const std::uint32_t number : numbers) append(number, 4);
        return *this;
    }
    CBytes& f64(std::initializer_list<double> numbers) {
        for (const double number : numbers) append(std::bit_cast<std::uint64_t>(number), 8);
        return *this;
    }
    CBytes& string(std::string_view text) {
        u32({static_cast<std::uint32_t>(text.size())});
        m_bytes.insert(m_bytes.end(), text.begin(), text.end());
        return *this;
    }
    operator const Bytes&() const { return m_bytes; }

private:
    void append(std::uint64_t number, int count) {
        for (int i = 0; i < count; ++i) m_bytes.push_back(static_cast<std::uint8_t>(number >> 8 * i));
    }

    Bytes m_bytes;
};

template <class Save>
Bytes savedBytes(Save save) {
    CWriteSeqBuffer stream(1024);
    EXPECT_EQ(failure(save(stream)), "");
    return contentOf(stream);
}

// What `load` makes of the bytes: its failure. Without one it must have read them all.
template <class Load>
std::string loadBytes(const Bytes& bytes, Load load) {
    CMemoryReader stream(bytes.data(), static_cast<int>(bytes.size()));
    const std::string message = failure(load(stream));
    if (message.empty()) {
        EXPECT_EQ(stream.getBytesLeft(), 0);
    }
    return message;
}

}  // namespace brt
