// SPDX-License-Identifier: LicenseRef-Halyard
// The table of the files that are linked into the program, from a list of them:
//
//     # name in the program = file, beside the list or at a whole path
//     SharedData.xml = SharedData.bin
//     ../../../Gfx/Fonts/base.fnt = Gfx/base.fnt
//
// The table is written as assembler that takes the files in as they are, which costs the build next to nothing.
// Threads: any. Errors: std::runtime_error, for a list with "FILE:LINE: error: ".
#pragma once

#include <map>
#include <string>

namespace brt {

// The file of each name, by name: the order of the table.
using ResourceList = std::map<std::string, std::string>;

ResourceList readResourceList(const std::string& path);

// Checks that the files are there. `symbol`: the C name of the table, an array of CResourceRow (Core/CResourceMap.h).
std::string resourceAssembler(const ResourceList& list, const std::string& symbol);

}  // namespace brt
