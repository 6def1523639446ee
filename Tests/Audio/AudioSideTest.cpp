// SPDX-License-Identifier: LicenseRef-Halyard
// The way of changes to the audio thread.
#include "ParamFixture.h"

#include <atomic>
#include <random>
#include <thread>

#include "Audio/CAudioParamLocks.h"

namespace brt {
namespace {

using Values = std::vector<double>;

class AudioSideTest : public ParamFixture {
protected:
    // Every place that either side has set reads the same on both.
    static void expectSame(CAudioParam& param) {
        const CAudioParamStorage& control = param.control();
        const CAudioParamStorage& audio = param.audio();
        for (int group = 0; group < std::max(control.groupCount(), audio.groupCount()); ++group) {
            ASSERT_EQ(control.elementCount(group), audio.elementCount(group)) << text(param.name()) << " " << group;
            for (int element = 0; element < control.elementCount(group); ++element) {
                const double ours = control.value(group, element, -1);
                const double theirs = audio.value(group, element, -1);
                if (control.format().isFloat())
                    ASSERT_EQ(ours, theirs) << text(param.name()) << " " << group << " " << element;
                else
                    ASSERT_EQ(control.data().text(ours), audio.data().text(theirs));
            }
        }
    }
};

TEST_F(AudioSideTest, usersHearOfTheirGroupAndElementAlone) {
    setActive(true);
    CAudioParam& gain = param("gain", {5});
    playChunk();
    std::uint8_t needed[4] = {};
    std::uint32_t groups[4] = {};
    CAudioParamUser* const users[] = {collector().addUser(gain, &needed[0], &groups[0], -1, -1),
                                      collector().addUser(gain, &needed[1], &groups[1], 2, 0),
                                      collector().addUser(gain, &needed[2], &groups[2], 2, 1),
                                      collector().addUser(gain, &needed[3], &groups[3], 3, 0)};
    change(gain, 2, 0, {1});
    playChunk();
    EXPECT_EQ(gain.audio().value(2, 0, 0), 1);
    EXPECT_EQ(gain.audio().value(5, 0, 0), 5) << "a group that nobody has set";
    EXPECT_EQ((std::vector<int>{needed[0], needed[1], needed[2], needed[3]}), (std::vector<int>{1, 1, 0, 0}));
    EXPECT_EQ(groups[1], 1U << 2);

    change(gain, 2, 0, {1});
    change(gain, 3, 0, {1});
    playChunk();
    EXPECT_EQ(groups[0], 1U << 3) << "the last group";
    gain.setInfo(info("other", {9}), {});
    collector().removeUser(users[1]);
    groups[1] = 0;
    playChunk();
    EXPECT_EQ(groups[1], 0U);
    EXPECT_EQ(groups[2], ~0U);
    EXPECT_EQ(gain.audio().value(2, 0, 0), 9);
}

TEST_F(AudioSideTest, allocatesNothingOnceTheStoragesHaveTheirSize) {
    setActive(true);
    CAudioParam& gain = param("gain", {5});
    CAudioParam& name = textParam("name", "one");
    const auto changeBoth = [&](double value, const char* text) {
        change(gain, 1, 0, {value, value});
        name.setString(0, 0, text, this);
    };
    changeBoth(1, "a text that does not fit into a string itself, but lies in a block of its own");
    playChunk();
    playChunk();
    changeBoth(2, "another text, which takes the place of the one before it, in a block of its own too");
    {
        const CNoAllocationScope trap;
        playChunk();
    }
    EXPECT_EQ(gain.audio().value(1, 1, 0), 2);
    EXPECT_TRUE(name.audio().data().text(name.audio().value(0, 0, 0)).startsWith("another"));
    collector().freeSpent();
}

TEST_F(AudioSideTest, withoutATakerTheQueueKeepsToWhatMoves) {
    CAudioParam& gain = param("gain", {5});
    CAudioParam& name = textParam("name", "one");
    playChunk();
    for (const bool isActive : {false, true}) {
        setActive(isActive);
        std::int64_t blocks = 0;
        for (int i = 0; i < 20000; ++i) {
            change(gain, i % 3, i % 2 == 0 ? 0 : 7, {double(i % 100)});
            name.setString(0, 0, i % 2 == 0 ? "even" : "odd", this);
            if (i == 5000) blocks = CBrtMemAllocator::liveBlocks();
        }
        EXPECT_LE(collector().waitingCount(), isActive ? CAudioParamCollector::kMergeAbove + 8 : 8);
        EXPECT_LE(CBrtMemAllocator::liveBlocks(), blocks + 16);
        playChunk();
        expectSame(gain);
        expectSame(name);
    }
}

TEST_F(AudioSideTest, whateverHappensTheAudioSideEndsWithTheSameValues) {
    std::mt19937 random(20);
    const auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    CAudioParam* const params[] = {&param("a", {5}), &param("b", {1, 2, 3}), &param("c", {1, 2}, {.elementSize = 2}),
                                   &param("d", {0}, {.isSingleGroup = true}), &textParam("e", "x,y")};
    const auto changeOne = [&](const CAudioParamChangeContext& context) {
        CAudioParam& param = *params[below(5)];
        const int group = below(4);
        switch (below(8)) {
        case 0: return param.resetToDefinition(below(3) - 1, -1, false, context);
        case 1: return param.resetToDefault(-1, -1, context);
        case 2: {
            CAudioParamUpdate whole;
            whole.group = kWholeParam;
            whole.format = param.control().format();
            CAudioParamStorage storage;
            storage.setFormat(whole.format);
            return param.update(storage.describe(kWholeParam), context);
        }
        default: break;
        }
        if (!param.control().format().isFloat())
            return param.setString(group, below(5), std::to_string(below(1000)), nullptr, context);
        const double v = below(100);
        const bool isSetCount = below(3) == 0;
        if (param.control().format().elementSize == 2) {
            CAudioParamUpdate update;
            const double two[] = {v, v + 1};
            update.group = group;
            update.firstElement = below(5);
            update.elementCount = 1;
            update.isSetCount = isSetCount;
            update.format = param.control().format();
            update.values = two;
            return param.update(update, context);
        }
        change(param, group, below(8), {v, v + 1, v + 2}, context, isSetCount);
    };
    for (int round = 0; round < 300; ++round) {
        setActive(below(2) == 0);
        for (int i = below(40); i > 0; --i) {
            if (below(4) > 0) {
                changeOne({});
            } else {
                CAudioParamQueue batch;
                const CAudioParamLocks locks(params);
                for (int n = below(6); n >= 0; --n) changeOne({.batch = &batch});
                collector().handOver(batch);
            }
        }
        playChunk();
        for (CAudioParam* const each : params) expectSame(*each);
        if (HasFatalFailure()) return;
    }
}

// Writers on eight threads, single changes and batches, beside the audio thread.
TEST_F(AudioSideTest, threadsWriteWhileOnePlays) {
    constexpr int kPairs = 8;
    constexpr int kRounds = 1500;
    setActive(true);
    std::vector<CAudioParam*> params;
    for (int i = 0; i < kPairs * 2; ++i) {
        const std::string name = "p" + std::to_string(100 + i);
        params.push_back(&param(name.c_str(), {0}));
    }
    playChunk();
    std::atomic<int> writing{8};
    std::atomic<int> torn{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < kRounds; ++i) {
                // A value tells its writer; a batch gives both of a pair the same.
                const double value = t * 10000 + i;
                CAudioParam* const pair[] = {params[static_cast<std::size_t>(i % kPairs * 2)],
                                             params[static_cast<std::size_t>(i % kPairs * 2 + 1)]};
                CAudioParamQueue batch;
                const CAudioParamLocks locks(pair);
                for (CAudioParam* const each : pair) each->setFloatAt(0, 0, value, nullptr, {.batch = &batch});
                collector().handOver(batch);
            }
            writing.fetch_sub(1);
        });
    }
    std::vector<double> last(params.size(), 0.0);
    const auto look = [&] {
        for (std::size_t i = 0; i < params.size(); i += 2) {
            const double a = params[i]->audio().value(0, 0, -1);
            const double b = params[i + 1]->audio().value(0, 0, -1);
            const int round = static_cast<int>(a) % 10000;
            if (a != b || a < 0 || a >= 80000 || round >= kRounds) torn.fetch_add(1);
            last[i] = a;
        }
    };
    while (writing.load() > 0) {
        playChunk();
        look();
    }
    for (std::thread& thread : threads) thread.join();
    playChunk();
    look();
    EXPECT_EQ(torn.load(), 0);
    for (CAudioParam* const each : params) expectSame(*each);
}

}  // namespace
}  // namespace brt
