// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/ParamNames.h"

#include <algorithm>

namespace brt {

CString resolveParamName(CStringView name, CStringView basePath) {
    if (name.startsWith("/")) return name.slice(1);
    int levels = 0;
    while (levels < name.length() && name[levels] == u'^') {
        basePath = basePath.slice(0, std::max(basePath.findLast(u'.'), 0));
        ++levels;
    }
    const CStringView rest = name.slice(levels);
    CString result = basePath;
    if (rest.isEmpty()) return result;
    if (!rest.startsWith(".")) result += ".";
    result += rest;
    return result;
}

}  // namespace brt
