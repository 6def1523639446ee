// SPDX-License-Identifier: LicenseRef-Halyard
// Where the attributes of an element stand in the text, and what the XML reader lets pass in texts though no document
// may have it. The element is known to be sound XML.
// Threads: any.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace brt {

struct AttributePlace {
    std::size_t name = 0;
    std::size_t value = 0;       // behind the quote
    std::string_view valueText;  // as written
};

// In the order of the text. `tagPlace` is where the tag's name begins.
std::vector<AttributePlace> attributePlaces(std::string_view text, std::size_t tagPlace);

// What is wrong with the first bad character reference ("&...;") of `text`, and its place there; "" if there is none.
std::string findBadReference(std::string_view text, std::size_t& place);

}  // namespace brt
