// SPDX-License-Identifier: LicenseRef-Halyard
// Finds the name that somebody has probably meant.
// Threads: one at a time.
#pragma once

#include <string>

#include "Core/CString.h"

namespace brt {

// Letters to insert, delete, change, or swap with their neighbour to get from one text to the other.
int editDistance(CStringView from, CStringView to);

class CNearName {
public:
    // Lives as long as this.
    explicit CNearName(CStringView wrong) noexcept;

    // One of the names that would be right. Of equally near ones the first counts.
    void consider(CStringView name);

    // "; did you mean 'NAME'?", or "" if none is near.
    std::string question() const;

private:
    CStringView m_wrong;
    CString m_nearest;
    int m_distance;  // of the nearest; or one more than counts as near
};

}  // namespace brt
