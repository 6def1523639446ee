// SPDX-License-Identifier: LicenseRef-Halyard
// Is told by a CUpdateNotifier that data has changed.
//
// Owner: as a rule the object that wants to know. Threads: any may attach, detach and destroy; `update` runs on the
// notifying thread, on several at once if several notify, so it is short and leaves longer work to a posted event.
// Notifiers and listeners may go in any order, and at the same time.
#pragma once

#include <cstdint>

#include "Core/CUpdateNotifier.h"

namespace brt {

class CUpdateListener : public CCheckedObject {
public:
    // REQUIRES: detached. The most derived class does it, first thing: here there is no `update` any more.
    ~CUpdateListener() override;

    // [any] Leaves the notifier that it is attached to, and attaches to another, if not null. When this returns, no
    // other thread is inside an `update` that the old notifier called. So no lock that `update` takes may be held.
    // Within its own `update` it returns without waiting; then nobody destroys the listener before that has ended.
    void attach(CUpdateNotifier* notifier, const CUpdateFilter& filter = {});
    void detach() { attach(nullptr); }

    // `data` is what the notifier was given; null for a change without particulars.
    virtual void update(const CUpdateData* data) = 0;

protected:
    CUpdateListener() = default;

private:
    friend class CUpdateNotifier;

    // Under the process-wide lock of attaching.
    CUpdateNotifier* m_notifier = nullptr;
    std::int64_t m_key = 0;
    std::uint64_t m_order = 0;
};

// Hands its updates to a member of its owner:
//     COwnedUpdateListener<CMeter> m_paletteListener{*this, &CMeter::onPaletteChanged};
// An owner calls `detach` in its destructor before anything that the member uses goes.
template <class T>
class COwnedUpdateListener : public CUpdateListener {
public:
    using Handler = void (T::*)(const CUpdateData* data);

    COwnedUpdateListener(T& owner, Handler handler) noexcept : m_owner(owner), m_handler(handler) {}
    ~COwnedUpdateListener() override { detach(); }

    void update(const CUpdateData* data) final { (m_owner.*m_handler)(data); }

private:
    T& m_owner;
    const Handler m_handler;
};

}  // namespace brt
