// SPDX-License-Identifier: LicenseRef-Halyard
// Numbers that are shown as they are.
// Owner and threads: as of every converter.
#pragma once

#include "Audio/CAudioParamConverter.h"

namespace brt {

class CAudioParamConverterReal final : public CAudioParamConverter {
public:
    static void describeClass(CClassInfo& info);
    [[nodiscard]] CError* init() override;

    double parseRaw(const CAudioParamInfo& info, int subValue, CStringView text, bool& ok) const override;
    void format(CString& text, const CAudioParamInfo& info, int subValue, double value, const CAudioParamData& data,
                EAudioTextMode mode) const override;

private:
    int m_decimals = 0;
};

}  // namespace brt
