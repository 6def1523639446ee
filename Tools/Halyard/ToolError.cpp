// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/ToolError.h"

namespace brt {

std::string printable(std::string text) {
    for (char& c : text)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = '?';
    return text;
}

std::string quoted(const std::filesystem::path& path) { return "'" + printable(path.string()) + "'"; }

}  // namespace brt
