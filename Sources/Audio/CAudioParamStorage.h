// SPDX-License-Identifier: LicenseRef-Halyard
// The values of one parameter, by channel group, element and sub-value, with defaults for what nobody has set.
//
// A parameter has several: the one that everybody but the audio thread reads and writes, the values of a reset, and the
// audio thread's own. Owner: the parameter, or a definition. Threads: those of the owner; nothing here is locked.
// Invariants: the values of a group are whole elements; in a storage of strings or raw data each value of a group and
// each default is the id of an item of its own.
#pragma once

#include <cstdint>
#include <span>

#include "Audio/CAudioParamData.h"
#include "Audio/CAudioParamFormat.h"
#include "Core/COwnedArray.h"

namespace brt {

class CAudioParamInfo;
class CAudioParamUpdateCopy;
struct CAudioParamUpdate;

class CAudioParamStorage : public CBrtMemAllocator {
public:
    CAudioParamStorage() = default;
    CAudioParamStorage(const CAudioParamStorage&) = delete;
    CAudioParamStorage& operator=(const CAudioParamStorage&) = delete;

    // False until it has a format and defaults.
    bool isValid() const noexcept { return m_isValid; }
    const CAudioParamFormat& format() const noexcept { return m_format; }
    const CAudioParamData& data() const noexcept { return m_data; }

    // The first sub-value at a place. A group or element that nobody has set reads as the default of that element, or
    // as the first one; a storage without values reads as `fallback`.
    double value(int group, int element, double fallback) const noexcept BRT_REALTIME {
        if (!m_isValid) return fallback;
        const auto g = static_cast<unsigned>(m_format.isSingleGroup ? 0 : group);
        const auto e = static_cast<unsigned>(m_format.isSingleElement ? 0 : element);
        if (g < static_cast<unsigned>(m_groupCount)) {
            const CGroup& values = m_groups[static_cast<int>(g)];
            if (e < static_cast<unsigned>(values.elementCount))
                return values.values[static_cast<int>(e) * m_format.elementSize];
        }
        return defaultValue(static_cast<int>(e));
    }

    // The default of an element, or the first one behind their end. REQUIRES: valid.
    double defaultValue(int element, int subValue = 0) const noexcept {
        const bool isThere = static_cast<unsigned>(element) < static_cast<unsigned>(m_defaultCount);
        return m_defaults[(isThere ? element * m_format.elementSize : 0) + subValue];
    }

    // What is set. A group beyond the count has no elements.
    int groupCount() const noexcept { return m_groupCount; }
    int elementCount(int group) const noexcept {
        return static_cast<unsigned>(group) < static_cast<unsigned>(m_groupCount) ? m_groups[group].elementCount : 0;
    }
    std::span<const double> values(int group) const noexcept;
    int defaultCount() const noexcept { return m_defaultCount; }
    std::span<const double> defaults() const noexcept;

    // An update that describes the present values of a group, or for kWholeParam the defaults.
    CAudioParamUpdate describe(int group) const noexcept;

    // Changing. An update of another format is ignored, but for one of the whole parameter, which brings its format.
    // Between the group's end and the update's beginning the defaults are filled in.
    void apply(const CAudioParamUpdate& update);
    // The same, but items change places: the new ones move here, those that they replace move there.
    // [audio] Allocates nothing where the storage has the size already.
    void applyMoving(CAudioParamUpdateCopy& update);
    // Valid, with that format and without groups; the one default is 0, or an empty item.
    void setFormat(const CAudioParamFormat& format);
    // Not valid, and empty.
    void clear();
    // Keeps numbers within the definition's range. Strings and raw data stay as they are.
    void clampAll(const CAudioParamInfo& info);
    // A copy of all of it.
    void assign(const CAudioParamStorage& source);

    // The defaults of a definition: "," parts elements, ";" parts groups, a blank parts the sub-values of elements that
    // have several. Numbers are in the text form of the info's converters. On failure it is undefined.
    [[nodiscard]] CError* parseDefValues(const CAudioParamInfo& info, CStringView text, CStringView context);

    // The stored form: one group, or all for -1.
    [[nodiscard]] CError* saveDataSet(COutputStream& stream, int group) const;
    // Takes the groups of a set of that format; the first one also gives the defaults, unless it is empty. Refuses
    // groups and elements beyond the limits, numbers that are none and items that are missing. On failure nothing has
    // changed.
    [[nodiscard]] CError* loadDataSet(CInputStream& stream, const CAudioParamFormat& format);

private:
    struct CGroup : CBrtMemAllocator {
        int elementCount = 0;
        CSmallArray<double> values;
    };

    void applyFrom(const CAudioParamUpdate& update, CAudioParamData* donor);
    void applyWhole(const CAudioParamUpdate& update, CAudioParamData* donor);
    double takeItem(double value, const CAudioParamUpdate& update, CAudioParamData* donor);
    void dropItem(double value, CAudioParamData* donor);
    double copyOfDefault(int element, int subValue);
    CGroup& growTo(int group);
    void dropElements(CGroup& group, int firstElement, CAudioParamData* donor);
    void setDefaultsFromFirstGroup();
    [[nodiscard]] CError* parseToken(const CAudioParamInfo& info, CStringView token, int subValue, double& value);
    [[nodiscard]] CError* loadGroup(CInputStream& stream, int group, const CAudioParamData& items);

    CAudioParamFormat m_format;
    CAudioParamData m_data;
    COwnedArray<CGroup> m_groups;  // those beyond the count are empty and wait for use
    int m_groupCount = 0;
    bool m_isValid = false;
    int m_defaultCount = 0;
    CSmallArray<double> m_defaults;
};

}  // namespace brt
