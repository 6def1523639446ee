// SPDX-License-Identifier: LicenseRef-Halyard
// Seconds, shown in another unit; on a linear, square or logarithmic scale.
// Owner and threads: as of every converter.
#pragma once

#include "Audio/CAudioParamConverter.h"

namespace brt {

class CAudioParamConverterTime final : public CAudioParamConverter {
public:
    static void describeClass(CClassInfo& info);
    [[nodiscard]] CError* init() override;

    double parseRaw(const CAudioParamInfo& info, int subValue, CStringView text, bool& ok) const override;
    void format(CString& text, const CAudioParamInfo& info, int subValue, double value, const CAudioParamData& data,
                EAudioTextMode mode) const override;
    double normalToInternal(const CAudioParamInfo& info, int subValue, double normal) const override;
    double internalToNormal(const CAudioParamInfo& info, int subValue, double value) const override;
    double normalToDisplay(const CAudioParamInfo& info, int subValue, double normal) const override;
    double displayToNormal(const CAudioParamInfo& info, int subValue, double display) const override;

private:
    double m_scale = 1.0;  // display unit to seconds
    bool m_isLog = false;
    bool m_isExact = false;  // linear
    bool m_isPrecise = false;
};

}  // namespace brt
