// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/TextFormat.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include "Core/NumberText.h"
#include "Core/Utf8.h"

namespace brt {

namespace {

// Collects characters until one finds no room; nothing is taken after that.
class CWriter {
public:
    explicit CWriter(std::span<char> room) : m_room(room) {}

    void put(char16_t unit) {
        char bytes[kMaxUtf8Bytes];
        putBytes({bytes, static_cast<std::size_t>(encodeUtf8(unit, bytes))});
    }
    void fill(char c, int count) {
        for (int i = 0; i < count; ++i) putBytes({&c, 1});
    }
    std::string_view written() const { return {m_room.data(), m_used}; }

private:
    void putBytes(std::string_view bytes) {
        if (m_isFull || bytes.size() > m_room.size() - m_used) {
            m_isFull = true;
            return;
        }
        std::memcpy(m_room.data() + m_used, bytes.data(), bytes.size());
        m_used += bytes.size();
    }

    std::span<char> m_room;
    std::size_t m_used = 0;
    bool m_isFull = false;
};

struct Place {
    bool isLeft = false, hasZeros = false, hasPlus = false;
    int width = 0;
    int precision = -1;  // -1: not told
    char letter = 0;
};

constexpr int kMaxWidth = 1000;

int readNumber(const char*& format) {
    int value = 0;
    for (; *format >= '0' && *format <= '9'; ++format) value = std::min(value * 10 + (*format - '0'), kMaxWidth);
    return value;
}

// Reads what follows a "%"; leaves `format` behind it.
Place readPlace(const char*& format) {
    Place place;
    for (;; ++format) {
        if (*format == '-')
            place.isLeft = true;
        else if (*format == '0')
            place.hasZeros = true;
        else if (*format == '+')
            place.hasPlus = true;
        else
            break;
    }
    place.width = readNumber(format);
    if (*format == '.') place.precision = readNumber(++format);
    while (*format != 0 && std::strchr("hlzjtqL", *format) != nullptr) ++format;
    place.letter = *format;
    if (*format != 0) ++format;
    return place;
}

void writePadded(CWriter& writer, const Place& place, CStringView text) {
    const int padding = place.width - text.length();
    if (!place.isLeft) writer.fill(' ', padding);
    for (int i = 0; i < text.length(); ++i) writer.put(text[i]);
    if (place.isLeft) writer.fill(' ', padding);
}

void writeNumber(CWriter& writer, const Place& place, std::string_view text) {
    const bool isNegative = text.starts_with('-');
    const bool hasSign = isNegative || place.hasPlus;
    if (isNegative) text.remove_prefix(1);
    const int padding = place.width - static_cast<int>(text.size()) - int{hasSign};
    const bool hasZeros = place.hasZeros && !place.isLeft;
    if (!place.isLeft && !hasZeros) writer.fill(' ', padding);
    if (hasSign) writer.put(isNegative ? u'-' : u'+');
    if (hasZeros) writer.fill('0', padding);
    for (const char c : text) writer.put(static_cast<unsigned char>(c));
    if (place.isLeft) writer.fill(' ', padding);
}

void writeInteger(CWriter& writer, const Place& place, const CFormatArgument& argument, int base) {
    char digits[72];
    char* const end = digits + sizeof digits;
    const bool isSigned = argument.kind() == CFormatArgument::kSigned && base == 10;
    const auto result = isSigned ? std::to_chars(digits, end, static_cast<std::int64_t>(argument.number()), base)
                                 : std::to_chars(digits, end, argument.number(), base);
    if (place.letter == 'X')
        std::transform(digits, result.ptr, digits,
                       [](char c) { return c >= 'a' && c <= 'f' ? static_cast<char>(c - 'a' + 'A') : c; });
    writeNumber(writer, place, {digits, static_cast<std::size_t>(result.ptr - digits)});
}

void writeArgument(CWriter& writer, const Place& place, const CFormatArgument& argument) {
    switch (argument.kind()) {
    case CFormatArgument::kText: writePadded(writer, place, argument.text().slice(0, place.precision)); break;
    case CFormatArgument::kDouble: {
        char digits[kMaxFixedLength];
        const int length = writeFixed(digits, argument.real(), place.precision < 0 ? 6 : place.precision);
        writeNumber(writer, place, {digits, static_cast<std::size_t>(length)});
        break;
    }
    case CFormatArgument::kAddress: writeInteger(writer, place, argument, 16); break;
    case CFormatArgument::kSigned:
    case CFormatArgument::kUnsigned:
        if (place.letter == 'c')
            writer.put(static_cast<char16_t>(argument.number()));
        else
            writeInteger(writer, place, argument, place.letter == 'x' || place.letter == 'X' ? 16 : 10);
        break;
    }
}

}  // namespace

std::string_view formatText(std::span<char> room, const char* format, std::span<const CFormatArgument> arguments) {
    CWriter writer(room);
    std::size_t next = 0;
    while (*format != 0) {
        const char c = *format++;
        if (c != '%') {
            writer.put(static_cast<unsigned char>(c));
            continue;
        }
        const Place place = readPlace(format);
        if (place.letter == '%')
            writer.put(u'%');
        else if (place.letter != 0 && next < arguments.size())
            writeArgument(writer, place, arguments[next++]);
    }
    return writer.written();
}

}  // namespace brt
