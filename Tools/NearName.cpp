// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/NearName.h"

#include <algorithm>
#include <cstdlib>
#include <utility>
#include <vector>

namespace brt {

// The table of the restricted Damerau-Levenshtein distance, of which three rows are needed at a time.
int editDistance(CStringView from, CStringView to) {
    const auto width = static_cast<std::size_t>(to.length()) + 1;
    std::vector<int> before(width), above(width), row(width);
    for (std::size_t j = 0; j < width; ++j) row[j] = static_cast<int>(j);
    for (int i = 1; i <= from.length(); ++i) {
        std::swap(before, above);
        std::swap(above, row);
        row[0] = i;
        for (int j = 1; j <= to.length(); ++j) {
            const auto at = static_cast<std::size_t>(j);
            const int change = from[i - 1] == to[j - 1] ? 0 : 1;
            row[at] = std::min({above[at] + 1, row[at - 1] + 1, above[at - 1] + change});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1])
                row[at] = std::min(row[at], before[at - 2] + 1);
        }
    }
    return row.back();
}

// A third of the letters may be wrong, and at least one where that leaves one that is right.
CNearName::CNearName(CStringView wrong) noexcept
    : m_wrong(wrong), m_distance((wrong.length() > 1 ? std::max(1, wrong.length() / 3) : 0) + 1) {}

void CNearName::consider(CStringView name) {
    if (std::abs(name.length() - m_wrong.length()) >= m_distance) return;
    const int distance = editDistance(m_wrong, name);
    if (distance >= m_distance) return;
    m_distance = distance;
    m_nearest = name;
}

std::string CNearName::question() const {
    return m_nearest.isEmpty() ? "" : "; did you mean '" + m_nearest.toUtf8() + "'?";
}

}  // namespace brt
