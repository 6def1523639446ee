// SPDX-License-Identifier: LicenseRef-Halyard
// Events from several threads to a tree that grows and goes: nothing is lost, and nothing reaches a newcomer.
#include <array>
#include <atomic>
#include <map>
#include <mutex>
#include <thread>

#include "EventFixture.h"

namespace brt {
namespace {

constexpr int kPosters = 4;
constexpr int kEventsOfEach = 2000;
constexpr int kGuests = 6;

// Counts what comes, and looks whom it is for. Each poster numbers what it sends to each object.
class CReceiver : public CObject {
public:
    static void describeClass(CClassInfo& info) {
        CObject::describeClass(info);
        static constexpr CEventInfo kEvents[] = {event<&CReceiver::onNumber>("number"),
                                                 event<&CReceiver::onHeard>("heard")};
        info.addEvents(kEvents);
    }

    std::array<int, kPosters> m_next{};  // number of the event that comes next from each poster

    static inline int s_wrong = 0;  // events that were for another object
    static inline int s_gaps = 0;   // events that came when another was due

private:
    CError* onNumber(const CAttrMap& args) {
        const CAttrValue* const wanted = args.find("for");
        if (wanted && wanted->asInteger() != id()) ++s_wrong;
        const auto poster = static_cast<std::size_t>(args.find("poster")->asInteger());
        const int number = args.find("number")->asInteger();
        s_gaps += number != m_next[poster];
        m_next[poster] = number + 1;
        return nullptr;
    }
    CError* onHeard() { return nullptr; }
};

class EventThreads : public EventFixture {
protected:
    void SetUp() override {
        TreeFixture::SetUp();
        CReceiver::s_wrong = 0;
        CReceiver::s_gaps = 0;
        static constexpr CCreatorRow kTags[] = {creatorRow<CReceiver>("test:receiver")};
        start("", kTags);
        m_host = receiver("host");
        m_hostAddress = m_host->address();
        m_host->listenObject("ui.host", "number", "number");
    }

    void TearDown() override {
        m_hostAddress = {};
        for (CRef<CObjectAddress>& guest : m_guests) guest = {};
        EventFixture::TearDown();
    }

    CReceiver* receiver(CStringView name) { return dynamic_cast<CReceiver*>(add(ui(), name, "test:receiver")); }

    // A guest goes, and another comes under its name.
    void replaceGuest(std::size_t place) {
        const CString name = CString("guest-").append(static_cast<char16_t>(u'a' + place));
        CObject::release(ui().findChild(name));
        CReceiver* const guest = receiver(name);
        guest->listenObject("ui.host", "number", "heard");  // the tree changes in all its parts
        EXPECT_EQ(messageOf(guest->setAttr("width", "{/^ width?5}", kImmediate)), "");
        const std::lock_guard lock(m_guestsLock);
        m_guests[place] = guest->address();
    }

    CRef<CObjectAddress> guest(std::size_t place) {
        const std::lock_guard lock(m_guestsLock);
        return m_guests[place];
    }

    void post(int poster) {
        std::map<int, int>& sent = m_sent[static_cast<std::size_t>(poster)];
        for (int number = 0; number < kEventsOfEach; ++number) {
            CAttrMap args;
            args.findOrInsert("poster").setInteger(poster);
            args.findOrInsert("number").setInteger(number);
            if (poster == 0)
                EXPECT_EQ(messageOf(m_hostAddress->fire("number", args)), "");
            else
                m_hostAddress->post("test", "number", args);
            const CRef<CObjectAddress> to = guest(static_cast<std::size_t>(number % kGuests));
            args.findOrInsert("for").setInteger(to->id());
            args.findOrInsert("number").setInteger(sent[to->id()]++);
            to->post("test", "number", args);
            const int turn = m_turn;
            while (number % 10 == 0 && m_turn == turn) std::this_thread::yield();
        }
        ++m_finished;
    }

    CReceiver* m_host = nullptr;
    CRef<CObjectAddress> m_hostAddress;
    std::array<std::map<int, int>, kPosters> m_sent;  // events of each poster to guests, by the guest's id
    std::atomic<int> m_finished{0};                   // posters
    std::atomic<int> m_turn{0};                       // of the tree's thread; posters don't run ahead of it

private:
    std::mutex m_guestsLock;
    std::array<CRef<CObjectAddress>, kGuests> m_guests;
};

TEST_F(EventThreads, postersNeverLoseAnEventNorReachANewcomer) {
    for (std::size_t place = 0; place < kGuests; ++place) replaceGuest(place);
    std::vector<std::thread> posters;
    for (int i = 0; i < kPosters; ++i) posters.emplace_back([this, i] { post(i); });
    while (m_finished < kPosters) {
        replaceGuest(static_cast<std::size_t>(m_turn++ % kGuests));
        pump();
    }
    for (std::thread& poster : posters) poster.join();
    while (pump()) {
    }
    for (const int next : m_host->m_next) EXPECT_EQ(next, kEventsOfEach);
    for (std::size_t place = 0; place < kGuests; ++place) {
        const auto& last = dynamic_cast<CReceiver&>(*ui().findObject(guest(place)->fullName()));
        for (std::size_t i = 0; i < kPosters; ++i) EXPECT_EQ(last.m_next[i], m_sent[i][last.id()]) << place;
    }
    EXPECT_EQ(CReceiver::s_gaps, 0);
    EXPECT_EQ(CReceiver::s_wrong, 0);
    EXPECT_GE(m_turn, kEventsOfEach / 10);
}

// As a host that closes an editor while its settings change elsewhere.
TEST_F(EventThreads, treesComeAndGoUnderPosters) {
    std::atomic<bool> isEnding{false};
    std::mutex lock;
    CRef<CObjectAddress> address = m_hostAddress;
    std::vector<std::thread> posters;
    for (int i = 0; i < kPosters; ++i)
        posters.emplace_back([&] {
            CAttrMap args;
            args.findOrInsert("poster").setInteger(0);
            args.findOrInsert("number").setInteger(0);
            while (!isEnding) {
                CRef<CObjectAddress> to;
                {
                    const std::lock_guard guard(lock);
                    to = address;
                }
                to->post("test", "number", args);
                EXPECT_EQ(messageOf(to->fire("number", args)), "");
            }
        });
    for (int i = 0; i < 200; ++i) {
        CObject* other = nullptr;
        EXPECT_EQ(messageOf(CApplication::initRootObject(other, "")), "");
        CObject* const bridge = add(*other, "ui", "ui:ui-event-bridge");
        CObject* const view = add(*bridge, "view", "test:receiver");
        view->listenObject("ui.view", "number", "number");
        {
            const std::lock_guard guard(lock);
            address = view->address();
        }
        pump();
        CObject::release(other);
    }
    isEnding = true;
    for (std::thread& poster : posters) poster.join();
}

}  // namespace
}  // namespace brt
