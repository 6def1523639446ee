// SPDX-License-Identifier: LicenseRef-Halyard
// Translates among the views of a parameter's value:
//     internal    what modules read and what is stored: a factor, seconds, a fraction, hertz, an index
//     normalised  0 to 1, what controls and hosts use
//     display     the number that a user reads, in the converter's unit: decibels, milliseconds, percent
//     text        with its unit left out
// Owner: the shared tree; one serves all parameters that name it, and holds nothing of any: ranges come from the info.
// Threads: any; only read once it is complete. This class itself is never in a tree.
#pragma once

#include "Audio/CAudioParamInfo.h"
#include "Core/CObject.h"

namespace brt {

enum class EAudioTextMode : int {
    kPlain = 0,
    kShort = 1,   // for narrow read-outs
    kMedium = 2,  // what hosts get
    kPrecise = 3,
};

class CAudioParamConverter : public CObject {
public:
    static void describeClass(CClassInfo& info);
    [[nodiscard]] CError* init() override;

    // The unit.
    const CString& label() const noexcept { return m_label; }
    // Controls step by whole numbers.
    bool isDiscrete() const noexcept { return m_isDiscrete; }

    // Text to internal value: within the range; as it stands, for the ranges and defaults of definitions themselves.
    // `ok` tells whether the text could be understood; if not, the result is the minimum, or what 0 stands for.
    virtual double parseClamped(const CAudioParamInfo& info, int subValue, CStringView text, bool& ok) const;
    virtual double parseRaw(const CAudioParamInfo& info, int subValue, CStringView text, bool& ok) const = 0;
    // `data` holds the texts of string parameters. A number that is none is shown as 0.
    virtual void format(CString& text, const CAudioParamInfo& info, int subValue, double value,
                        const CAudioParamData& data, EAudioTextMode mode) const = 0;
    // Between normalised and internal, and between normalised and display. Linear unless overridden.
    virtual double normalToInternal(const CAudioParamInfo& info, int subValue, double normal) const;
    virtual double internalToNormal(const CAudioParamInfo& info, int subValue, double value) const;
    virtual double normalToDisplay(const CAudioParamInfo& info, int subValue, double normal) const;
    virtual double displayToNormal(const CAudioParamInfo& info, int subValue, double display) const;

private:
    CString m_label;
    bool m_isDiscrete = false;
};

}  // namespace brt
