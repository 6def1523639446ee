// SPDX-License-Identifier: LicenseRef-Halyard
#include <atomic>
#include <cmath>
#include <thread>

#include "VizFixture.h"

namespace brt {
namespace {

class CAudioVizCollectorTest : public VizFixture {
protected:
    // A slot whose listeners count.
    VizSlot& listenedSlot(const char* path) {
        VizSlot& slot = viz().getSlot(path);
        viz().addListener(slot);
        beginBlock(0.0);
        return slot;
    }
    void post(VizSlot& slot, double time) {
        auto record = std::make_unique<CAudioVizDataMeter>();
        record->time = time;
        viz().post(slot, std::move(record));
    }
    // How often the audio side of "a-enable" has changed since the last call, and its value.
    int changes() { return std::exchange(m_flag, std::uint8_t{0}); }
    double enabled() { return params().getParam("a-enable").audio().value(0, 0, 0.0); }

    std::uint8_t m_flag = 0;
    std::uint32_t m_groups = 0;
};

TEST_F(CAudioVizCollectorTest, listenersSwitchTheProcess) {
    params().addUser(params().getParam("a-enable"), &m_flag, &m_groups, -1, -1);
    VizSlot& slot = viz().getSlot("a");
    EXPECT_EQ(&viz().getSlot("a"), &slot);
    post(slot, 1.0);
    EXPECT_EQ(collect().count("a"), 0) << "without listeners";

    viz().addListener(slot);
    EXPECT_EQ(slot.listenerCount, 0) << "counted by the audio thread";
    beginBlock(0.0);
    EXPECT_EQ(slot.listenerCount, 1);
    beginBlock(0.0);
    EXPECT_EQ(enabled(), 1.0);
    changes();

    // A second one changes nothing, nor do two changes that undo each other.
    viz().addListener(slot);
    beginBlock(0.0);
    viz().removeListener(slot);
    viz().addListener(slot);
    beginBlock(0.0);
    beginBlock(0.0);
    EXPECT_EQ(slot.listenerCount, 2);
    EXPECT_EQ(changes(), 0);

    viz().removeListener(slot);
    beginBlock(0.0);
    post(slot, 1.0);
    viz().removeListener(slot);
    beginBlock(0.0);
    beginBlock(0.0);
    EXPECT_EQ(slot.listenerCount, 0);
    EXPECT_EQ(enabled(), 0.0);
    EXPECT_EQ(changes(), 1);
    EXPECT_EQ(collect().count("a"), 0) << "what nobody has collected goes with the last listener";
    viz().removeListener(slot);
    beginBlock(0.0);
    EXPECT_EQ(slot.listenerCount, 0) << "one too many";
}

TEST_F(CAudioVizCollectorTest, recordsGoToWhoeverCollectsFirst) {
    VizSlot& a = listenedSlot("a");
    VizSlot& b = listenedSlot("b");
    beginBlock(2.5);
    const Collected nothing = collect();
    EXPECT_EQ(nothing.position, 2.5);
    EXPECT_TRUE(nothing.records.empty());

    post(a, 1.0);
    post(b, 1.5);
    post(a, 2.0);
    const Collected first = collect();
    EXPECT_EQ(first.count("a"), 2);
    EXPECT_EQ(first.meter("a", 1).time, 2.0);
    EXPECT_EQ(first.meter("a", 1).slotIndex, -1);
    EXPECT_EQ(first.count("b"), 1);
    EXPECT_TRUE(collect().records.empty());

    post(a, 3.0);
    viz().finish();
    EXPECT_TRUE(collect().records.empty());
    b.remoteListenerCount = 1;  // all of them
    post(b, 4.0);
    EXPECT_TRUE(collect().records.empty());
}

TEST_F(CAudioVizCollectorTest, aStalledWindowLosesTheOldest) {
    VizSlot& slot = listenedSlot("a");
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 1500; ++i) post(slot, i);
        const Collected all = collect();
        ASSERT_EQ(all.count("a"), 1024);
        for (int i = 0; i < 1024; ++i) ASSERT_EQ(all.meter("a", i).time, 1500 - 1024 + i);
    }
}

TEST_F(CAudioVizCollectorTest, theLastRateAskedForHoldsFromTheNextBlockOn) {
    env().setDefaultFrameRate(40.0);
    collect(25.0);
    collect(50.0);
    EXPECT_EQ(env().frameRate(), 40.0);
    beginBlock(1.0);
    EXPECT_EQ(env().frameRate(), 50.0);
    for (const double bad : {0.0, -5.0, std::nan("")}) collect(bad);
    beginBlock(2.0);
    EXPECT_EQ(env().frameRate(), 50.0);
    collect(1e300);
    beginBlock(3.0);
    EXPECT_EQ(env().frameRate(), CAudioEnv::kHighestFrameRate);
}

// A stream that takes a number of bytes and then no more.
class FullStream final : public COutputStream {
public:
    explicit FullStream(int room) : m_room(room) {}
    CError* write(const void*, int count) override {
        m_room -= count;
        return m_room >= 0 ? nullptr : makeError(nullptr, __FILE__, __LINE__, "", "@brtstr_FullStream_write Full.");
    }

private:
    int m_room;
};

TEST_F(CAudioVizCollectorTest, aStreamThatFailsSaysSoAndLeaksNothing) {
    VizSlot& slot = listenedSlot("a");
    for (const int room : {0, 8, 12, 20, 30, 68}) {
        post(slot, 1.0);
        FullStream stream(room);
        EXPECT_EQ(messageOf(viz().collect(stream, 40.0)), "Full.") << room;
    }
    post(slot, 1.0);  // and goes with the collector
}

TEST_F(CAudioVizCollectorTest, theAudioThreadMovesPointersOnly) {
    VizSlot& slot = listenedSlot("a");
    std::vector<std::unique_ptr<CAudioVizData>> stock(1024);
    for (auto& record : stock) record = std::make_unique<CAudioVizDataMeter>();
    const CNoAllocationScope trap;
    for (auto& record : stock) viz().post(slot, std::move(record));
    EXPECT_EQ(viz().takePending(), nullptr);
}

TEST_F(CAudioVizCollectorTest, threadsListenAndCollectWhileOnePosts) {
    constexpr int kRecords = 20000;
    VizSlot& slot = listenedSlot("a");
    std::atomic<bool> isDone{false};
    std::atomic<int> received{0};
    std::atomic<bool> isInOrder{true};
    std::vector<std::thread> threads;
    threads.emplace_back([&] {
        for (double last = -1.0; !isDone.load();) {
            const Collected some = collect();
            for (int i = 0; i < some.count("a"); ++i) {
                if (!(some.meter("a", i).time > last)) isInOrder.store(false);
                last = some.meter("a", i).time;
            }
            received.fetch_add(some.count("a"));
        }
    });
    threads.emplace_back([&] {
        VizSlot& other = viz().getSlot("other");
        while (!isDone.load()) {
            viz().addListener(other);
            viz().addListener(slot);
            viz().removeListener(slot);
            viz().removeListener(other);
        }
    });
    for (int i = 0; i < kRecords; ++i) {
        if (i % 10 == 0) beginBlock(i);
        post(slot, i);
    }
    isDone.store(true);
    for (std::thread& thread : threads) thread.join();
    beginBlock(kRecords);
    received.fetch_add(collect().count("a"));
    EXPECT_TRUE(isInOrder.load());
    EXPECT_GT(received.load(), 0);
    EXPECT_LE(received.load(), kRecords);
    EXPECT_EQ(slot.listenerCount, 1);
    EXPECT_EQ(viz().getSlot("other").listenerCount, 0);
}

using CAudioVizDataTest = VizFixture;

TEST_F(CAudioVizDataTest, recordsComeBackAsTheyWereOrNotAtAll) {
    CAudioVizDataMeter meter;
    meter.channel = 3;
    meter.time = 12.5;
    meter.peak = 0.5;
    CAudioVizDataInfo info;
    info.text = "a text";
    info.value = 7;
    CAudioVizDataSpectrum spectrum;
    spectrum.bins.setCount(300);
    spectrum.bins[299] = 2.0;
    CAudioVizDataVScope scope;
    scope.right.setCount(300);
    scope.right[299] = 3;
    const auto bytesOf = [](const CAudioVizData& record, CByteBuffer& bytes) {
        CWriteSeqBuffer stream(1024);
        EXPECT_EQ(messageOf(record.saveTagged(stream)), "");
        stream.moveTo(bytes);
    };
    for (const CAudioVizData* const record : std::initializer_list<CAudioVizData*>{&meter, &info, &spectrum, &scope}) {
        CByteBuffer bytes, again;
        bytesOf(*record->clone(), bytes);
        std::unique_ptr<CAudioVizData> loaded;
        for (int size = 0; size <= bytes.size(); ++size) {
            CMemoryReader reader(bytes.data(), size);
            ASSERT_EQ(messageOf(CAudioVizData::loadTagged(loaded, reader)).empty(), size == bytes.size()) << size;
        }
        bytesOf(*loaded, again);
        EXPECT_EQ(Bytes(bytes.data(), bytes.data() + bytes.size()), Bytes(again.data(), again.data() + again.size()));
        EXPECT_EQ(loaded->type, record->type);
        EXPECT_EQ(loaded->time, record->time);
    }
}

TEST_F(CAudioVizDataTest, aReaderSkipsWhatItDoesNotKnow) {
    CWriteSeqBuffer stream(1024);
    EXPECT_EQ(messageOf(writeU32(stream, 2)), "");
    EXPECT_EQ(messageOf(writeU32(stream, 5)), "");
    EXPECT_EQ(messageOf(stream.write("12345", 5)), "");
    EXPECT_EQ(messageOf(CAudioVizDataMeter().saveTagged(stream)), "");
    // Its length claims more than there is, and more than there may be.
    EXPECT_EQ(messageOf(writeU32(stream, 0)), "");
    EXPECT_EQ(messageOf(writeU32(stream, 0xffffffff)), "");
    CByteBuffer bytes;
    stream.moveTo(bytes);
    CMemoryReader reader(bytes.data(), bytes.size());
    std::unique_ptr<CAudioVizData> record;
    EXPECT_EQ(messageOf(CAudioVizData::loadTagged(record, reader)), "");
    EXPECT_EQ(record, nullptr);
    EXPECT_EQ(messageOf(CAudioVizData::loadTagged(record, reader)), "");
    EXPECT_NE(record, nullptr);
    EXPECT_NE(messageOf(CAudioVizData::loadTagged(record, reader)), "");
}

}  // namespace
}  // namespace brt
