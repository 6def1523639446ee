// SPDX-License-Identifier: LicenseRef-Halyard
// Hands the changes of one key of a store to a member of its owner:
//     CAppDataListener<CMeter> m_speedListener{*this, &CMeter::onSpeedChanged};
//     m_speedListener.listen(CAppData::global(), "frames-per-second");
// The member runs on the thread that made the change. What is said of COwnedUpdateListener holds here too.
#pragma once

#include "Core/CAppData.h"
#include "Core/CUpdateListener.h"

namespace brt {

template <class T>
class CAppDataListener final : public COwnedUpdateListener<T> {
public:
    using COwnedUpdateListener<T>::COwnedUpdateListener;
    // Here, and not in the base: meanwhile another thread may be about to call `update`.
    ~CAppDataListener() override { this->detach(); }

    // [any] Leaves the store or key that it listened to.
    void listen(CAppData& store, CStringView key) { this->attach(&store, CUpdateFilter(key)); }
};

}  // namespace brt
