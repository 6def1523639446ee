// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioParamLocks.h"

#include <algorithm>

namespace brt {

CAudioParamLocks::CAudioParamLocks(std::span<CAudioParam* const> params) {
    CSmallArray<CAudioParam*> ordered;
    for (CAudioParam* const param : params)
        if (param != nullptr && ordered.find(param) < 0) ordered.append(param);
    const auto lockInOrder = [&](ELockRank rank) {
        std::sort(ordered.begin(), ordered.end(),
                  [](CAudioParam* a, CAudioParam* b) { return a->section().isBefore(b->section()); });
        for (CAudioParam* const param : ordered)
            if (param->section().rank() == rank) m_locks.append(new CRankedLock(param->section()));
    };
    lockInOrder(ELockRank::kParam);
    // Filters can be asked for what they write now that their sources are held.
    const int givenCount = ordered.count();
    for (int i = 0; i < givenCount; ++i)
        if (ordered[i]->section().rank() == ELockRank::kParam) ordered[i]->listDependents(ordered);
    lockInOrder(ELockRank::kDependentParam);
}

}  // namespace brt
