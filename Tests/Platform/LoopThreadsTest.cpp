// SPDX-License-Identifier: LicenseRef-Halyard
// Threads that post while targets and loops come and go under them.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

#include "Platform/CMessageLoop.h"
#include "Platform/CNativeThread.h"

namespace brt {
namespace {

constexpr int kPosters = 4;

// Addresses that the posters share: read and replaced under a lock, as any counted value.
class CAddressBoard {
public:
    void put(std::size_t slot, const CLoopAddress& address) {
        const std::lock_guard lock(m_lock);
        m_addresses[slot] = address;
    }
    CLoopAddress get(std::size_t slot) {
        const std::lock_guard lock(m_lock);
        return m_addresses[slot];
    }

private:
    std::mutex m_lock;
    std::array<CLoopAddress, kPosters> m_addresses;
};

// Messages carry the number of the target they were meant for.
class CComesAndGoes final : public CLoopTarget {
public:
    explicit CComesAndGoes(CMessageLoop& loop) : m_loop(loop), id(loop.addTarget(*this)) { m_loop.startTimer(id, 1); }
    ~CComesAndGoes() override { m_loop.removeTarget(id); }
    void handleMessage(std::uint32_t, std::int64_t meantFor) override {
        ++received;
        if (static_cast<LoopTargetId>(meantFor) != id) ++wrong;
    }

private:
    CMessageLoop& m_loop;

public:
    const LoopTargetId id;
    inline static constinit std::atomic<int> received{0};
    inline static constinit std::atomic<int> wrong{0};
};

// Checks that each poster's numbers come without a gap.
class CCounts final : public CLoopTarget {
public:
    void handleMessage(std::uint32_t poster, std::int64_t number) override {
        if (number != next[poster]++) ++faults;
        if (++total == expected) CMessageLoop::current()->quit();
    }
    std::array<std::atomic<std::int64_t>, kPosters> next{};
    std::int64_t total = 0;
    std::int64_t expected = 0;
    int faults = 0;
};

TEST(LoopThreads, nothingIsLostAndNewcomersGetNothingOfOthers) {
    constexpr int kMessages = 20000;
    std::shared_ptr<CMessageLoop> loop;
    ASSERT_EQ(CMessageLoop::obtain(loop), 0);
    CAddressBoard board;
    CCounts counts;
    counts.expected = kPosters * kMessages;
    const LoopTargetId countsId = loop->addTarget(counts);
    const CLoopAddress toCounts = loop->addressOf(countsId);

    // Each message replaces one of the targets whose addresses are on the board.
    class CReplacer final : public CLoopTarget {
    public:
        CReplacer(CMessageLoop& loop, CAddressBoard& board) : m_loop(loop), m_board(board) {}
        void handleMessage(std::uint32_t, std::int64_t number) override {
            auto& target = m_targets[static_cast<std::size_t>(number) % kPosters];
            target.reset();
            target = std::make_unique<CComesAndGoes>(m_loop);
            m_board.put(static_cast<std::size_t>(number) % kPosters, m_loop.addressOf(target->id));
        }

    private:
        CMessageLoop& m_loop;
        CAddressBoard& m_board;
        std::array<std::unique_ptr<CComesAndGoes>, kPosters> m_targets;
    };
    CReplacer replacer(*loop, board);
    const LoopTargetId replacerId = loop->addTarget(replacer);
    const CLoopAddress toReplacer = loop->addressOf(replacerId);

    std::vector<std::thread> posters;
    for (std::uint32_t poster = 0; poster < kPosters; ++poster)
        posters.emplace_back([&, poster] {
            for (int i = 0; i < kMessages; ++i) {
                EXPECT_EQ(toCounts.post(poster, i), 0);
                if (i % 64 == 0) {
                    EXPECT_EQ(toReplacer.post(0, poster), 0);
                }
                // Not far ahead, or every target would be replaced before a message gets to it.
                while (counts.next[poster] < i - 20) yieldThread();
                const CLoopAddress passing = board.get((poster + static_cast<unsigned>(i)) % kPosters);
                EXPECT_EQ(passing.post(0, static_cast<std::int64_t>(passing.target())), 0);
            }
        });
    EXPECT_EQ(loop->run(), 0);
    for (std::thread& poster : posters) poster.join();
    EXPECT_EQ(counts.total, counts.expected);
    EXPECT_EQ(counts.faults, 0);
    EXPECT_EQ(CComesAndGoes::wrong, 0);
    EXPECT_GT(CComesAndGoes::received, 0);
    loop->removeTarget(replacerId);
    loop->removeTarget(countsId);
}

TEST(LoopThreads, loopsComeAndGoWhileOthersPostWakeAndLookForTheirs) {
    constexpr int kLoops = 300;
    CAddressBoard board;
    CManualLoopClock clock;
    std::atomic<bool> isOver{false};
    std::vector<std::thread> owners;
    for (std::size_t slot = 0; slot < 2; ++slot)
        owners.emplace_back([&, slot] {
            for (int i = 0; i < kLoops; ++i) {
                std::shared_ptr<CMessageLoop> loop;
                ASSERT_EQ(CMessageLoop::obtain(loop, {.clock = i % 2 == 0 ? &clock : nullptr}), 0);
                const CComesAndGoes target(*loop);
                board.put(slot, loop->addressOf(target.id));
                if (i % 4 == 0) {
                    EXPECT_EQ(loop->run(), 0);  // ended by a poster
                }
                for (int round = 0; round < 20; ++round) loop->pump();
                EXPECT_EQ(CMessageLoop::current(), loop);
            }
        });
    std::vector<std::thread> posters;
    for (std::size_t poster = 0; poster < kPosters; ++poster)
        posters.emplace_back([&, poster] {
            for (unsigned i = 0; !isOver; ++i) {
                const CLoopAddress address = board.get((i + poster) % 2);
                EXPECT_EQ(address.post(0, static_cast<std::int64_t>(address.target())), 0);
                if (i % 8 == 0) {
                    address.quit();
                    sleepSeconds(20e-6);  // four that never rest outrun any loop
                }
                if (i % 8 == 4) clock.advance(0.001);
                EXPECT_EQ(CMessageLoop::current(), nullptr);
            }
        });
    for (std::thread& owner : owners) owner.join();
    isOver = true;
    for (std::thread& poster : posters) poster.join();
    EXPECT_EQ(CComesAndGoes::wrong, 0);
}

}  // namespace
}  // namespace brt
