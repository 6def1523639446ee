// SPDX-License-Identifier: LicenseRef-Halyard
// States with names, counted from the minimum on. Names stand here, or else in the definition of the parameter.
// Owner and threads: as of every converter.
#pragma once

#include "Audio/Converters/CAudioParamConverterRound.h"

namespace brt {

class CAudioParamConverterEnum final : public CAudioParamConverterRound {
public:
    static void describeClass(CClassInfo& info);
    [[nodiscard]] CError* init() override;

    double parseClamped(const CAudioParamInfo& info, int subValue, CStringView text, bool& ok) const override;
    double parseRaw(const CAudioParamInfo& info, int subValue, CStringView text, bool& ok) const override;
    void format(CString& text, const CAudioParamInfo& info, int subValue, double value, const CAudioParamData& data,
                EAudioTextMode mode) const override;

private:
    static int findName(const CAudioParamInfo& names, const CAudioParamInfo& info, CStringView text);

    CAudioParamInfo m_names;  // its state names alone
};

}  // namespace brt
