// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Docc/CSourceText.h"

#include <algorithm>

namespace brt {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool isFollower(char byte) noexcept { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

// Bytes of the character that begins the text; 0 where no document can hold it.
std::size_t usableLength(std::string_view text) noexcept {
    const auto lead = static_cast<unsigned char>(text[0]);
    if (lead < 0x80) return lead != 0 ? 1 : 0;
    const std::size_t length = lead >= 0xC2 && lead < 0xE0 ? 2 : lead >= 0xE0 && lead < 0xF0 ? 3 : 0;
    if (length == 0 || text.size() < length) return 0;
    for (std::size_t i = 1; i < length; ++i)
        if (!isFollower(text[i])) return 0;
    const auto second = static_cast<unsigned char>(text[1]);
    const bool isOverlong = lead == 0xE0 && second < 0xA0;
    const bool isSurrogate = lead == 0xED && second >= 0xA0;
    return isOverlong || isSurrogate ? 0 : length;
}

}  // namespace

CSourceText::CSourceText(std::string name, std::string bytes) : m_name(std::move(name)), m_bytes(std::move(bytes)) {
    if (m_bytes.starts_with(kByteOrderMark)) m_bytes.erase(0, kByteOrderMark.size());
    m_lineStarts.push_back(0);
    for (std::size_t i = 0; i < m_bytes.size(); ++i)
        if (m_bytes[i] == '\n') m_lineStarts.push_back(i + 1);
}

SourcePosition CSourceText::positionOf(std::size_t place) const {
    place = std::min(place, m_bytes.size());
    const auto next = std::upper_bound(m_lineStarts.begin(), m_lineStarts.end(), place);
    const auto lineStart = static_cast<std::ptrdiff_t>(*(next - 1));
    const auto end = m_bytes.begin() + static_cast<std::ptrdiff_t>(place);
    const auto characters =
        std::count_if(m_bytes.begin() + lineStart, end, [](char byte) { return !isFollower(byte); });
    return {static_cast<int>(next - m_lineStarts.begin()), static_cast<int>(characters) + 1};
}

std::size_t CSourceText::findUnusable() const noexcept {
    for (std::size_t place = 0; place < m_bytes.size();) {
        const std::size_t length = usableLength(std::string_view(m_bytes).substr(place));
        if (length == 0) return place;
        place += length;
    }
    return npos;
}

}  // namespace brt
