// SPDX-License-Identifier: LicenseRef-Halyard
// Sorts the children of a process definition: which parameters exist at its level, which of them a module reads, which
// names mean others, what filters and what is stored.
//
// Children of a plain group ("core:object"), as "io-params", count as well; groups don't nest. Lists are in the order
// of the document. Owner: the shared tree, which outlives every instance. Threads: any, once it is initialised; nothing
// changes then.
#pragma once

#include <cstdint>

#include "Core/CObject.h"
#include "Core/COwnedArray.h"

namespace brt {

class CAudioParamAllocDef;
class CAudioParamDef;
class CAudioParamFilterDef;
class CAudioParamRemapDef;
class CAudioParamSharedStorage;

class CAudioProcessDefBaseInit : public CObject {
public:
    // A definition, and the path from the process to what it is about: it starts with ".", or is empty for the process
    // itself.
    template <class T>
    struct CPlaced : CBrtMemAllocator {
        CPlaced(const T& placed, CString path) : definition(placed), relativePath(std::move(path)) {}

        const T& definition;
        const CString relativePath;
    };
    template <class T>
    using CPlacedList = COwnedArray<CPlaced<T>>;

    // By the slot of the module; of several for one slot the last.
    using CAllocMap = COrderedMap<std::int32_t, const CAudioParamAllocDef*>;

    [[nodiscard]] CError* initDone() override;

    const CAllocMap& paramAllocs() const noexcept { return m_paramAllocs; }
    const CSmallArray<const CAudioParamRemapDef*>& paramRemaps() const noexcept { return m_paramRemaps; }
    // With the path of the parameter.
    const CPlacedList<CAudioParamSharedStorage>& sharedStorages() const noexcept { return m_sharedStorages; }
    // With the path that the names of its parameters start from.
    const CPlacedList<CAudioParamFilterDef>& paramFilters() const noexcept { return m_paramFilters; }
    // With the path of the parameter.
    const CPlacedList<CAudioParamDef>& params() const noexcept { return m_params; }

private:
    void sortChild(const CObject& child);
    void sortPlaced(const CObject& child, CStringView groupPath);

    CAllocMap m_paramAllocs;
    CSmallArray<const CAudioParamRemapDef*> m_paramRemaps;
    CPlacedList<CAudioParamSharedStorage> m_sharedStorages;
    CPlacedList<CAudioParamFilterDef> m_paramFilters;
    CPlacedList<CAudioParamDef> m_params;
};

}  // namespace brt
