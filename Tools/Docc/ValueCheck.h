// SPDX-License-Identifier: LicenseRef-Halyard
// Whether a text is a value as its row asks for, where the row alone can tell.
// Threads: any.
#pragma once

#include <string>
#include <vector>

#include "Core/CAttrInfo.h"

namespace brt {

// The words of a text, parted by blanks. They live as long as the text.
std::vector<CStringView> wordsOf(CStringView text);

// Whether the text has a reference in it, whose value only the running program knows.
bool hasReference(CStringView text);

// What is wrong with a flag, a number or a word; "" for nothing, and for all other kinds.
std::string faultOfValue(CStringView value, const CAttrInfo& row);

}  // namespace brt
