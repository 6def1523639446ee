// SPDX-License-Identifier: LicenseRef-Halyard
// `halyard preset`: what presets and banks hold, in any form in which they travel, and one form made from another.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace brt {

// Files everywhere, or resources of the program; presets by name, or by index from 0.
inline constexpr const char* kFactoryBank = "FactoryROM.cbf";

struct PresetListRequest {
    std::vector<std::string> files = {kFactoryBank};
    bool asJson = false;
};

struct PresetShowRequest {
    std::string file;
    std::string preset;  // empty: all
    bool asJson = false;
};

struct PresetConvertRequest {
    std::string input;
    std::filesystem::path output;  // its name's ending chooses the form
    std::string preset;            // empty: all
    bool mayReplace = false;
};

struct PresetDiffRequest {
    std::string first;
    std::string second;
    std::string firstPreset;  // empty: all, which are then compared by their names
    std::string secondPreset;
    bool asJson = false;
};

// The exit status. Throw CToolError.
int runPresetList(const PresetListRequest& request);
int runPresetShow(const PresetShowRequest& request);
int runPresetConvert(const PresetConvertRequest& request);
// 1 where they differ. What can't be compared is a CUsageError, so that its status is another.
int runPresetDiff(const PresetDiffRequest& request);

}  // namespace brt
