// SPDX-License-Identifier: LicenseRef-Halyard
// `halyard preset diff`.
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>

#include "Tools/Halyard/CToolInstance.h"
#include "Tools/Halyard/PresetCommand.h"
#include "Tools/Halyard/PresetFile.h"
#include "Tools/Halyard/PresetValue.h"
#include "Tools/Halyard/Printing.h"
#include "Tools/Halyard/ToolError.h"

namespace brt {
namespace {

struct Difference {
    std::string preset;
    std::string key;  // empty: the preset itself is in one of them only
    std::string first;
    std::string second;
};

constexpr const char* kMissing = "(missing)";

// `title`: what both are called.
void compare(std::vector<Difference>& differences, const std::string& title, const CAudioPreset& first,
             const CAudioPreset& second) {
    const auto describe = [](const CString& key, const CByteBuffer* block) {
        if (block == nullptr) return std::string(kMissing);
        const PresetValue value = readPresetValue(key, *block);
        return valueText(value) + (value.unit.empty() ? "" : " " + value.unit);
    };
    const auto add = [&](const CString& key, const CByteBuffer* a, const CByteBuffer* b) {
        std::string firstText = describe(key, a);
        std::string secondText = describe(key, b);
        if (firstText == secondText) secondText += " (other bytes)";
        differences.push_back({title, printable(key.toUtf8()), std::move(firstText), std::move(secondText)});
    };
    for (const auto& [key, block] : first.entries()) {
        const CByteBuffer* const other = second.entries().find(key);
        const bool isSame = other != nullptr && other->size() == block.size() &&
                            std::equal(block.data(), block.data() + block.size(), other->data());
        if (!isSame) add(key, &block, other);
    }
    for (const auto& [key, block] : second.entries())
        if (first.entries().find(key) == nullptr) add(key, nullptr, &block);
}

// The preset of that very name; of several, the first that no other has been held against.
int findSame(const PresetFile& file, const CString& name, const std::vector<bool>& isTaken) {
    for (int i = 0; i < file.presetCount(); ++i)
        if (!isTaken[static_cast<std::size_t>(i)] && file.preset(i).name() == name) return i;
    return -1;
}

// All of one against all of the other, by names.
std::vector<Difference> compareAll(const PresetFile& first, const PresetFile& second) {
    std::vector<Difference> differences;
    std::vector<bool> isTaken(static_cast<std::size_t>(second.presetCount()));
    for (int i = 0; i < first.presetCount(); ++i) {
        const CAudioPreset& preset = first.preset(i);
        const std::string title = printable(preset.name().toUtf8());
        const int other = findSame(second, preset.name(), isTaken);
        if (other < 0) {
            differences.push_back({title, "", countText(preset.entries().count(), "value"), kMissing});
            continue;
        }
        isTaken[static_cast<std::size_t>(other)] = true;
        compare(differences, title, preset, second.preset(other));
    }
    for (int i = 0; i < second.presetCount(); ++i)
        if (!isTaken[static_cast<std::size_t>(i)])
            differences.push_back({printable(second.preset(i).name().toUtf8()), "", kMissing,
                                   countText(second.preset(i).entries().count(), "value")});
    return differences;
}

int onlyPreset(const PresetFile& file, const std::string& wanted) {
    if (!wanted.empty()) return findPreset(file, wanted);
    if (file.presetCount() == 1) return 0;
    throw CToolError(brt::quoted(file.name) + " holds " + countText(file.presetCount(), "preset") +
                     "; choose the one to compare");
}

std::vector<Difference> differencesOf(const PresetDiffRequest& request) {
    PresetFile first, second;
    readPresetFile(first, request.first);
    readPresetFile(second, request.second);
    const bool areSingle = first.presetCount() == 1 && second.presetCount() == 1;
    if (request.firstPreset.empty() && request.secondPreset.empty() && !areSingle) return compareAll(first, second);
    // One name serves both where two are not given.
    const std::string& other =
        request.secondPreset.empty() && second.presetCount() != 1 ? request.firstPreset : request.secondPreset;
    const CAudioPreset& a = first.preset(onlyPreset(first, request.firstPreset));
    const CAudioPreset& b = second.preset(onlyPreset(second, other));
    std::vector<Difference> differences;
    std::string title = printable(a.name().toUtf8());
    if (a.name() != b.name()) {
        differences.push_back({title, "(name)", title, printable(b.name().toUtf8())});
        title += " and " + printable(b.name().toUtf8());
    }
    compare(differences, title, a, b);
    return differences;
}

void printDifferences(const std::vector<Difference>& differences) {
    std::string title;
    std::vector<std::vector<std::string>> rows;
    const auto flush = [&] {
        if (!rows.empty()) printTable(rows);
        rows.clear();
    };
    for (const Difference& difference : differences) {
        if (difference.preset != title) {
            flush();
            title = difference.preset;
            std::printf("%s\n", title.c_str());
        }
        rows.push_back(
            {"  " + (difference.key.empty() ? "(preset)" : difference.key), difference.first, "->", difference.second});
    }
    flush();
}

}  // namespace

int runPresetDiff(const PresetDiffRequest& request) {
    startApplication();
    std::vector<Difference> differences;
    try {
        differences = differencesOf(request);
    } catch (const CToolError& error) {
        throw CUsageError(error.what());  // 1 says that they differ
    }
    if (request.asJson) {
        auto json = nlohmann::ordered_json::array();
        for (const Difference& difference : differences)
            json.push_back({{"preset", difference.preset},
                            {"key", difference.key},
                            {"first", difference.first},
                            {"second", difference.second}});
        printJson(json);
    } else {
        printDifferences(differences);
    }
    return differences.empty() ? 0 : 1;
}

}  // namespace brt
