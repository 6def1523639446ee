// SPDX-License-Identifier: LicenseRef-Halyard
// Presets and banks in every form in which they travel, recognised by their content:
//
//     .cpf, .cbf   a preset, a bank
//     .chunk       what a host keeps of an instance: 16 zero bytes, then a bank or a preset as above
//     .fxp, .fxb   a host's own file around such a chunk. Numbers in it are big-endian:
//          0  4  "CcnK"                        16  4  id of the plug-in, four characters
//          4  4  bytes that follow             20  4  version of the plug-in
//          8  4  "FPCh" preset, "FBCh" bank    24  4  number of parameters, or of programs
//         12  4  version of the form: 1, 2
//          preset: 28  28 name, ends with 0    bank: 28  4 current program (form 2), else 0
//                  56   4 bytes of the chunk         32 124 zeros
//                  60   - the chunk                 156   4 bytes of the chunk
//                                                   160   - the chunk
//     settings     a list of banks, as in the program's own routing presets
//
// Threads: one at a time.
#pragma once

#include <filesystem>
#include <string>

#include "Audio/CAudioPresetBank.h"

namespace brt {

enum class EPresetForm { kPreset, kBank, kPresetChunk, kBankChunk, kFxp, kFxb, kList };

// For people: "a bank"; for programs: "cbf".
const char* formText(EPresetForm form);
const char* formName(EPresetForm form);

struct PresetFile {
    std::string name;  // of the file or resource
    EPresetForm form = EPresetForm::kBank;
    COwnedArray<CAudioPresetBank> banks;  // a preset alone stands in a bank without a name; only a list has several

    int presetCount() const;
    // Counted through all banks. REQUIRES: 0 <= index < presetCount().
    const CAudioPreset& preset(int index) const;
};

// A file, or else a resource of the program of that name. Throws CToolError.
// REQUIRES: the application is started.
void readPresetFile(PresetFile& file, const std::string& name);

// The preset that is meant by a name, with its id or without, or by an index from 0. Throws CToolError.
int findPreset(const PresetFile& file, const std::string& wanted);

// Whether it holds one preset and nothing else.
bool isPresetForm(EPresetForm form);

// The content of a file. A preset form takes the first preset of the bank. Throws CToolError for a list, which has no
// file of its own. REQUIRES: the bank isn't empty.
std::string presetFileBytes(EPresetForm form, const CAudioPresetBank& bank);

// Replaces the file as a whole, or leaves it as it was. Throws CToolError.
void writePresetFile(const std::filesystem::path& path, EPresetForm form, const CAudioPresetBank& bank);

}  // namespace brt
