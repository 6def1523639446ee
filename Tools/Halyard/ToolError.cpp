// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/ToolError.h"

namespace brt {

std::string quoted(const std::filesystem::path& path) {
    std::string text = path.string();
    for (char& c : text)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = '?';
    return "'" + text + "'";
}

}  // namespace brt
