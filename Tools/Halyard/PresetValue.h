// SPDX-License-Identifier: LicenseRef-Halyard
// One value of a preset as users see it: through the definition of its parameter, or plainly where there is none.
// Threads: one at a time.
#pragma once

#include <string>
#include <vector>

#include "Core/CByteBuffer.h"
#include "Core/CString.h"

namespace brt {

struct PresetValue {
    std::string key;
    std::string definition;  // the full name in the block
    std::string visualName;  // empty: it has none
    std::string unit;
    bool isKnown = false;                         // the program has the definition, and the key is the end of its name
    std::string fault;                            // why the block can't be read; then there are no groups
    bool isNumber = false;                        // `numbers` are what modules read, as `texts` are what users read
    std::vector<std::vector<std::string>> texts;  // by channel group and element
    std::vector<std::vector<double>> numbers;
};

// REQUIRES: the application is started.
PresetValue readPresetValue(const CString& key, const CByteBuffer& bytes);

// All groups on one line: "3.0", "1,2,0,0", "3.0;6.0", "3.0 in all 8 groups", "(none)".
std::string valueText(const PresetValue& value);

}  // namespace brt
