// SPDX-License-Identifier: LicenseRef-Halyard
// What commands print, for people and for programs. Threads: any.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace brt {

// To standard output, in columns as wide as they must be. All rows have as many words as the first.
void printTable(const std::vector<std::vector<std::string>>& rows);

// To standard output. Bytes that are no text become question marks.
void printJson(const nlohmann::ordered_json& json);

// "1 preset", "7 presets".
std::string countText(int count, const char* thing);

}  // namespace brt
