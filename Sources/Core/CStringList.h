// SPDX-License-Identifier: LicenseRef-Halyard
// A list of texts that it owns.
// Owner: the object that holds it as a member. Threads: those of its owner; not locked.
#pragma once

#include "Core/COwnedArray.h"
#include "Core/CString.h"

namespace brt {

class CStringList : public COwnedArray<CString> {
public:
    using COwnedArray<CString>::append;

    // A copy of the text.
    CString* append(CStringView text) { return append(new CString(text)); }

    // Index of the first equal text; -1 if there is none.
    int find(CStringView text) const noexcept {
        for (int i = 0; i < count(); ++i) {
            if ((*this)[i] == text) return i;
        }
        return -1;
    }

    // All texts with `separator` between them.
    CString joined(CStringView separator) const {
        CString result;
        for (int i = 0; i < count(); ++i) {
            if (i > 0) result += separator;
            result += (*this)[i];
        }
        return result;
    }
};

}  // namespace brt
