// SPDX-License-Identifier: LicenseRef-Halyard
// What a definition says about a parameter: the form of its values, their ranges, how they turn into text and into the
// 0 to 1 of a control, their defaults.
//
// Owner: a definition of the shared tree, which outlives every instance; or whoever has loaded the stored form.
// Threads: any; only read once it is complete.
#pragma once

#include "Audio/CAudioParamStorage.h"
#include "Core/CStringList.h"

namespace brt {

class CAudioParamConverter;
class CObject;

class CAudioParamInfo : public CBrtMemAllocator {
public:
    static constexpr std::uint32_t kVersion = 1;

    CAudioParamFormat format;
    bool isGlobal = false;      // one for all instances of its process
    bool isStorable = false;    // stands in presets
    bool isPersistent = false;  // stays with the session when presets change; then it is not storable
    CString visualName;
    CString name;          // the definition's full name
    CString registryName;  // of a registry that follows this parameter; or empty
    CStringList converterNames;
    // One a sub-value. The converters belong to the shared tree.
    CSmallArray<const CAudioParamConverter*> converters;
    CSmallArray<double> maxValues;
    CSmallArray<double> minValues;
    // Of discrete states, from the minimum on; one short for each long.
    CStringList longStateNames;
    CStringList shortStateNames;
    CSmallArray<double> switchValues;
    CStringList switchNames;
    CAudioParamStorage defaults;

    CAudioParamInfo() = default;
    CAudioParamInfo(const CAudioParamInfo&) = delete;
    CAudioParamInfo& operator=(const CAudioParamInfo&) = delete;

    // The first converter; null if there is none, which only a loaded one of string or raw data may have.
    const CAudioParamConverter* converter() const noexcept { return converters.isEmpty() ? nullptr : converters[0]; }
    double minimum(int subValue = 0) const noexcept { return minValues[subValue]; }
    double maximum(int subValue = 0) const noexcept { return maxValues[subValue]; }
    // Within the range of a sub-value, which may run downwards; a number that is none gives the minimum.
    double limit(double value, int subValue = 0) const noexcept;
    // Whether a parameter with `other` can go on with this one.
    bool isSameAs(const CAudioParamInfo& other) const noexcept;

    // What the attributes of a definition say. `owner` finds converters by path; its name is for messages.
    [[nodiscard]] CError* parseConverterNames(const CObject& owner);
    [[nodiscard]] CError* parseMinMaxValues(CStringView minimums, CStringView maximums, CStringView context);
    [[nodiscard]] CError* parseStateNames(CStringView text, CStringView context);
    void parseSwitches(CStringView values, CStringView names);

    // The stored form, which windows get. On failure what is here is undefined.
    [[nodiscard]] CError* save(COutputStream& stream) const;
    [[nodiscard]] CError* load(CInputStream& stream, const CObject& owner);

    // The first switch, a value with a name of its own: whether the text is that name, or the value is that value.
    bool matchSwitchName(CStringView text, double& value) const;
    bool formatSwitch(CString& text, double value) const;
};

}  // namespace brt
