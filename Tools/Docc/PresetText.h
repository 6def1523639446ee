// SPDX-License-Identifier: LicenseRef-Halyard
// The text form of presets:
//
//     # A comment fills a line of its own.
//     kind = bank                      what is made: a bank file, or with "list" a list of banks for the settings
//     name = Bank                      of the bank; may be left out
//     id = qzkd                        stands before each preset's name, as "qzkd:Default"
//     definitions = audio.modMain      keys are names of parameters below this object of the shared document
//     groups = 8                       where a parameter has values for each channel group and one group is given, so
//                                      many groups get it; 1 if left out
//     numbers = ms-pairs 0 16          a key that has no definition yet: a list of numbers within that range
//
//     [*]                              what each preset begins with
//     bypass-enable                    without "=": the default of the definition
//     io-params.in-routing = 1,2,0,0   elements are parted by commas, channel groups by semicolons
//     preset-name = {name}             "{name}" is the preset's own name, without the id
//
//     [+3dB Hard-Clip]
//     modHal.ingain = 3.0              a number in the unit that users see, or the name of a state, as On
//
// Blanks around names, keys, elements and lines count for nothing. Threads: any.
#pragma once

#include <string_view>
#include <vector>

#include "Tools/Docc/CDiagnostics.h"

namespace brt {

// Everything points into the text.
struct PresetLine {
    std::string_view key;
    std::string_view value;
    bool hasValue = false;  // there is a "="
    std::size_t place = 0;  // of the key
    std::size_t valuePlace = 0;
};

struct PresetSection {
    std::string_view name;
    std::size_t place = 0;
    std::vector<PresetLine> lines;  // no key twice
};

struct PresetText {
    std::vector<PresetLine> settings;    // before the first section; a key may stand there several times
    PresetSection common;                // "[*]"
    std::vector<PresetSection> presets;  // no name twice
};

// Takes the text apart as far as it is sound; what isn't is reported. The source outlives the result.
PresetText parsePresetText(const CSourceText& source, CDiagnostics& diagnostics);

}  // namespace brt
