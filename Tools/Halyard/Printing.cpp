// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/Printing.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>

namespace brt {
namespace {

// Letters, not bytes: units and names may be of any alphabet.
std::size_t widthOf(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xc0U) != 0x80U; }));
}

}  // namespace

void printTable(const std::vector<std::vector<std::string>>& rows) {
    std::vector<std::size_t> widths(rows[0].size());
    for (const auto& row : rows)
        for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], widthOf(row[i]));
    for (const auto& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i) line += row[i] + std::string(widths[i] - widthOf(row[i]) + 2, ' ');
        line.erase(line.find_last_not_of(' ') + 1);
        std::printf("%s\n", line.c_str());
    }
}

void printJson(const nlohmann::ordered_json& json) {
    std::printf("%s\n", json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace).c_str());
}

std::string countText(int count, const char* thing) {
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

}  // namespace brt
