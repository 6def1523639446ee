// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Docc/StartTag.h"

#include <charconv>

namespace brt {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

std::size_t skipBlanks(std::string_view text, std::size_t at) {
    return std::min(text.find_first_not_of(kBlanks, at), text.size());
}

// The code point of the inside of "&#...;"; 0 if it is none.
unsigned codePointOf(std::string_view digits) {
    const bool isHex = digits.starts_with("x");
    if (isHex) digits.remove_prefix(1);
    unsigned value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value, isHex ? 16 : 10);
    return error == std::errc() && stop == end ? value : 0;
}

std::string faultOf(std::string_view reference) {
    if (reference.starts_with("#")) {
        const unsigned codePoint = codePointOf(reference.substr(1));
        const bool isSurrogate = codePoint >= 0xD800 && codePoint < 0xE000;
        if (codePoint > 0 && codePoint <= 0xFFFF && !isSurrogate) return {};
        return "'&" + std::string(reference) + ";' is no character that a document can hold (&#1; to &#xFFFF;)";
    }
    for (const std::string_view known : {"amp", "lt", "gt", "quot", "apos"})
        if (reference == known) return {};
    return "unknown entity '&" + std::string(reference) + ";'; there are &amp; &lt; &gt; &quot; &apos; and &#NUMBER;";
}

}  // namespace

std::vector<AttributePlace> attributePlaces(std::string_view text, std::size_t tagPlace) {
    std::vector<AttributePlace> places;
    std::size_t at = std::min(text.find_first_of(" \t\r\n/>", tagPlace), text.size());
    for (;;) {
        at = skipBlanks(text, at);
        if (at >= text.size() || text[at] == '/' || text[at] == '>') return places;
        AttributePlace place;
        place.name = at;
        at = text.find_first_of("\"'", at);
        if (at == std::string_view::npos) return places;
        place.value = at + 1;
        at = text.find(text[at], place.value);
        if (at == std::string_view::npos) return places;
        place.valueText = text.substr(place.value, at - place.value);
        places.push_back(place);
        ++at;
    }
}

std::string findBadReference(std::string_view text, std::size_t& place) {
    for (std::size_t at = text.find('&'); at != std::string_view::npos; at = text.find('&', at + 1)) {
        place = at;
        const std::size_t end =
            text.find_first_not_of("#abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789", at + 1);
        if (end == std::string_view::npos || text[end] != ';' || end == at + 1)
            return "'&' begins an entity; write &amp; for the character";
        std::string fault = faultOf(text.substr(at + 1, end - at - 1));
        if (!fault.empty()) return fault;
    }
    return {};
}

}  // namespace brt
