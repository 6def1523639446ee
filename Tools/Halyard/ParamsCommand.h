// SPDX-License-Identifier: LicenseRef-Halyard
// `halyard params`: the parameters of an instance, and how the values of one look from each side.
#pragma once

#include <string>
#include <vector>

namespace brt {

struct ParamsRequest {
    std::string name;                 // the full one, or its end behind a point; empty: list all
    std::vector<std::string> values;  // as a user would type them; none: list that parameter only
};

// The exit status. Throws CToolError.
int runParams(const ParamsRequest& request);

}  // namespace brt
