// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CUpdateListener.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <random>
#include <shared_mutex>
#include <thread>
#include <vector>

#include "Platform/CNativeThread.h"

namespace brt {
namespace {

// Keys are the lengths of names.
class CNameNotifier : public CUpdateNotifier {
public:
    std::int64_t mapKey(const CUpdateFilter& filter) override { return filter.name.length(); }
};

class CEar final : public CUpdateListener {
public:
    explicit CEar(std::function<void(const CUpdateData*)> action) : m_action(std::move(action)) {}
    ~CEar() override { detach(); }
    void update(const CUpdateData* data) override { m_action(data); }

private:
    const std::function<void(const CUpdateData*)> m_action;
};

TEST(CUpdateNotifier, tellsThoseUnderTheKeyInTheOrderOfAttaching) {
    std::string heard;
    CEar a([&](const CUpdateData*) { heard += 'a'; });
    CEar b([&](const CUpdateData*) { heard += 'b'; });
    CEar c([&](const CUpdateData* data) { heard += data ? 'C' : 'c'; });
    CUpdateNotifier notifier;
    c.attach(&notifier, 7);
    a.attach(&notifier, 7);
    b.attach(&notifier);
    const CUpdateData seven{.key = 7};
    notifier.notify(&seven);
    EXPECT_EQ(std::exchange(heard, ""), "Ca");
    notifier.notify();
    EXPECT_EQ(std::exchange(heard, ""), "b");
    c.attach(&notifier);
    a.detach();
    a.detach();
    notifier.notify(&seven);
    notifier.notify();
    EXPECT_EQ(std::exchange(heard, ""), "bc");

    CNameNotifier names;
    c.attach(&names, CStringView("four"));
    const CUpdateData four{.key = 4};
    names.notify(&four);
    notifier.notify();
    EXPECT_EQ(std::exchange(heard, ""), "Cb");
    int object = 0;
    c.attach(&notifier, &object);
    const CUpdateData ofObject{.key = CUpdateFilter(&object).number};
    notifier.notify(&ofObject);
    EXPECT_EQ(heard, "C");
}

TEST(CUpdateNotifier, mayGoBeforeItsListeners) {
    int updates = 0;
    CEar a([&](const CUpdateData*) { ++updates; });
    {
        CUpdateNotifier gone;
        a.attach(&gone);
    }
    CUpdateNotifier other;
    a.attach(&other);
    other.notify();
    EXPECT_EQ(updates, 1);
}

TEST(CUpdateNotifier, anUpdateMayChangeWhoListens) {
    std::string heard;
    auto notifier = std::make_unique<CUpdateNotifier>();
    auto late = std::make_unique<CEar>([&](const CUpdateData*) { heard += 'l'; });
    auto next = std::make_unique<CEar>([&](const CUpdateData*) { heard += 'n'; });
    CEar* self = nullptr;
    CEar changer([&](const CUpdateData*) {
        heard += 'c';
        next.reset();
        late->attach(notifier.get());
        self->attach(notifier.get());  // to the end of the row, for the next time
    });
    self = &changer;
    CEar last([&](const CUpdateData*) { heard += '.'; });
    changer.attach(notifier.get());
    next->attach(notifier.get());
    last.attach(notifier.get());
    notifier->notify();
    EXPECT_EQ(std::exchange(heard, ""), "c.");
    notifier->notify();
    EXPECT_EQ(std::exchange(heard, ""), ".lc");

    CEar destroyer([&](const CUpdateData*) { heard += 'd', notifier.reset(); });
    CEar never([&](const CUpdateData*) { heard += '!'; });
    destroyer.attach(notifier.get(), 5);
    never.attach(notifier.get(), 5);
    const CUpdateData five{.key = 5};
    notifier->notify(&five);
    EXPECT_EQ(heard, "d");
}

// Has `update` run on another thread, and does `action` meanwhile: it must return after the update's end alone.
template <class Action>
void waitsForTheUpdate(CUpdateNotifier& notifier, std::atomic<int>& step, Action action) {
    std::thread notifying([&] { notifier.notify(); });
    while (step != 1) yieldThread();
    std::thread ending([&] {
        sleepSeconds(0.02);
        step = 2;
    });
    action();
    EXPECT_EQ(step, 3);
    notifying.join();
    ending.join();
}

TEST(CUpdateNotifier, detachingAndDestroyingWaitForAnUpdateElsewhere) {
    std::atomic<int> step{0};
    const auto hold = [&](const CUpdateData*) {
        step = 1;
        while (step != 2) yieldThread();
        step = 3;
    };
    auto notifier = std::make_unique<CUpdateNotifier>();
    auto ear = std::make_unique<CEar>(hold);
    ear->attach(notifier.get());
    waitsForTheUpdate(*notifier, step, [&] { ear->detach(); });
    step = 0;
    ear->attach(notifier.get());
    waitsForTheUpdate(*notifier, step, [&] { ear.reset(); });
    step = 0;
    ear = std::make_unique<CEar>(hold);
    ear->attach(notifier.get());
    waitsForTheUpdate(*notifier, step, [&] { notifier.reset(); });
}

// The `update` that another thread waits for destroys the notifier, from within a second one.
TEST(CUpdateNotifier, anUpdateThatDestroysItKeepsNobodyWaiting) {
    std::atomic<int> step{0};
    auto notifier = std::make_unique<CUpdateNotifier>();
    bool isOuter = true;
    CEar ear([&](const CUpdateData*) {
        if (std::exchange(isOuter, false)) {
            notifier->notify();
            sleepSeconds(0.005);
            step = 3;
        } else {
            step = 1;
            while (step != 2) yieldThread();
            notifier.reset();
        }
    });
    ear.attach(notifier.get());
    waitsForTheUpdate(*notifier, step, [&] { ear.detach(); });
}

class CMeter {
public:
    explicit CMeter(CUpdateNotifier& notifier) { m_listener.attach(&notifier); }
    ~CMeter() { m_listener.detach(); }

    int updates() const { return m_updates; }

private:
    void onUpdate(const CUpdateData*) { ++m_updates; }

    int m_updates = 0;
    COwnedUpdateListener<CMeter> m_listener{*this, &CMeter::onUpdate};
};

TEST(COwnedUpdateListener, callsItsOwner) {
    CUpdateNotifier notifier;
    CMeter meter(notifier);
    notifier.notify();
    EXPECT_EQ(meter.updates(), 1);
}

// Notifiers come and go; a thread that uses one holds its lock for reading. Listeners know nothing of these locks.
struct CPlace {
    std::shared_mutex lock;
    std::unique_ptr<CUpdateNotifier> notifier = std::make_unique<CUpdateNotifier>();
};

class CCanary final : public CUpdateListener {
public:
    ~CCanary() override {
        detach();
        m_life = 0;
    }
    void update(const CUpdateData*) override {
        if (m_life != kAlive) ++s_deadUpdates;
        ++s_updates;
    }
    static inline std::atomic<int> s_updates{0};
    static inline std::atomic<int> s_deadUpdates{0};

private:
    static constexpr int kAlive = 0x1EA2;
    std::atomic<int> m_life{kAlive};
};

TEST(CUpdateNotifier, anythingMayHappenOnFourThreads) {
    constexpr int kThreads = 4;
    constexpr int kSteps = 20000;
    std::array<CPlace, 3> places;
    const auto act = [&places](unsigned seed) {
        std::minstd_rand random(seed);
        std::array<std::unique_ptr<CCanary>, 4> listeners;
        for (int step = 0; step < kSteps; ++step) {
            CPlace& place = places[random() % places.size()];
            auto& listener = listeners[random() % listeners.size()];
            switch (random() % 8) {
            case 0: listener.reset(); break;
            case 1:
                if (listener) listener->detach();
                break;
            case 2:
            case 3: {
                if (!listener) listener = std::make_unique<CCanary>();
                const std::shared_lock use(place.lock);
                listener->attach(place.notifier.get());
                break;
            }
            case 4:
                if (random() % 8 == 0) {
                    const std::unique_lock change(place.lock);
                    place.notifier = std::make_unique<CUpdateNotifier>();
                }
                break;
            default: {
                const std::shared_lock use(place.lock);
                place.notifier->notify();
            }
            }
        }
    };
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < kThreads; ++i) threads.emplace_back(act, 17 + i);
    for (std::thread& thread : threads) thread.join();
    EXPECT_GT(CCanary::s_updates, 1000);
    EXPECT_EQ(CCanary::s_deadUpdates, 0);
}

}  // namespace
}  // namespace brt
