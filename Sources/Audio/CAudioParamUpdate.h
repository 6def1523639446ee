// SPDX-License-Identifier: LicenseRef-Halyard
// One change of one parameter: a run of elements of one group, or the whole parameter.
// Threads: one at a time.
#pragma once

#include <cstdint>

#include "Audio/CAudioParamData.h"
#include "Audio/CAudioParamFormat.h"

namespace brt {

// Points to the values of whoever describes the change; valid as long as they are.
struct CAudioParamUpdate {
    int group = 0;  // or kWholeParam: the values become the defaults, all groups become empty
    int firstElement = 0;
    int elementCount = 0;
    bool isSetCount = false;       // the group has firstElement + elementCount elements from now on
    const void* source = nullptr;  // who made the change, for listeners that leave out their own
    CAudioParamFormat format;
    const double* values = nullptr;         // elementCount * format.elementSize
    const CAudioParamData* data = nullptr;  // strings and raw data: the items that the values stand for

    int endElement() const noexcept { return firstElement + elementCount; }
    int valueCount() const noexcept { return elementCount * format.elementSize; }
};

// What a stored change may be about: windows change groups, and are told of whole parameters too.
enum class EUpdateScope : bool { kGroup, kGroupOrWhole };

// A change that owns its values and items.
class CAudioParamUpdateCopy : public CBrtMemAllocator {
public:
    CAudioParamUpdateCopy() = default;
    // Items are cloned, and renumbered in the order of use.
    explicit CAudioParamUpdateCopy(const CAudioParamUpdate& source) { assign(source); }
    CAudioParamUpdateCopy(const CAudioParamUpdateCopy&) = delete;
    CAudioParamUpdateCopy& operator=(const CAudioParamUpdateCopy&) = delete;

    void assign(const CAudioParamUpdate& source);

    const CAudioParamUpdate& update() const noexcept { return m_update; }
    // For whoever moves the items out; what they replace may be left here.
    CAudioParamData& data() noexcept { return m_data; }

    // The form in which windows send changes.
    [[nodiscard]] CError* save(COutputStream& stream) const;
    // Refuses what is beyond the scope, groups and elements beyond the limits, counts that the stream can't hold,
    // values that are not finite, and items that are missing. On failure it is an empty change.
    [[nodiscard]] CError* load(CInputStream& stream, EUpdateScope scope = EUpdateScope::kGroup);

private:
    CError* loadFrom(CInputStream& stream, EUpdateScope scope);

    CAudioParamUpdate m_update;
    CSmallArray<double> m_values;
    CAudioParamData m_data;
};

}  // namespace brt
