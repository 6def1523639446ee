// SPDX-License-Identifier: LicenseRef-Halyard
// Names of parameters that mean other parameters, so that several modules share one:
//
//     <audio:param-remap>modInGain.gain = ingain; modHalyard.hardness = hardness;</audio:param-remap>
//     <audio:param-remap orig="release" new="/plugin.modMain.meter-releasetime"/>
//
// Pairs in a text are parted by ";", or by blanks if there is no ";"; what stands before "=" is the alias.
// Owner: the process definition that it stands in. Threads: any, once it is initialised.
#pragma once

#include "Core/CObject.h"
#include "Core/COwnedArray.h"

namespace brt {

class CAudioParamRemapDef : public CObject {
public:
    // Both as `resolveParamName` takes them.
    struct CPair : CBrtMemAllocator {
        CString orig;
        CString target;
    };

    static void describeClass(CClassInfo& info);
    [[nodiscard]] CError* initDone() override;

    // Never empty.
    const COwnedArray<CPair>& pairs() const noexcept { return m_pairs; }

private:
    CError* parsePairs(const CString& text);
    void addPair(CStringView orig, CStringView target);

    COwnedArray<CPair> m_pairs;
};

}  // namespace brt
