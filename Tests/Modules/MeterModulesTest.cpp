// SPDX-License-Identifier: LicenseRef-Halyard
// The meters as processes: frames and their times, what parameters do, what displays get. MeterTest has the arithmetic.
#include <cmath>
#include <numbers>

#include "Audio/CAudioProcessDefBase.h"
#include "Audio/VizFixture.h"
#include "Modules/CModMeter.h"
#include "Modules/ModuleTags.h"

namespace brt {
namespace {

constexpr double kRate = 44100.0;

class MeterModulesTest : public VizFixture {
protected:
    void TearDown() override {
        m_process.reset();
        EXPECT_EQ(m_pool->heldCount(), 0);
        m_pool.reset();
        m_context.reset();
        VizFixture::TearDown();
    }

    std::span<const CCreatorRow> tags() override {
        for (const auto& table : {audioTags(), moduleTags()}) m_tags.insert(m_tags.end(), table.begin(), table.end());
        return m_tags;
    }

    static void putParam(CDocumentWriter& writer, int index, const char* name, const char* converter,
                         const char* value) {
        put(writer, "audio:param", name,
            {{"element-size", "1"},
             {"is-global", "true"},
             {"converter", converter},
             {"min-values", "-10000"},
             {"max-values", "10000"},
             {"def-values", value}});
        put(writer, "audio:param-alloc", "param-alloc",
            {{"param-name", name}, {"index", std::to_string(index).c_str()}});
    }
    static void putMeter(CDocumentWriter& writer, const char* name, Attributes attributes) {
        begin(writer, "audio:modMeter", name, attributes);
        const char* const kTime = "shared::audio.time";
        const char* const kFlag = "shared::audio.enum-enable";
        const struct {
            const char* name;
            const char* converter;
            const char* value;
        } params[] = {{"peak-time", kTime, "1000"},
                      {"rms-time", kTime, "100"},
                      {"gain", "shared::audio.gain", "0"},
                      {"bias-time", kTime, "2000"},
                      {"use-bias", kFlag, "0"},
                      {"release", kTime, "500"},
                      {"peak-gain", "shared::audio.gain", "0"},
                      {"rms-time2", kTime, "10"},
                      {"release2", kTime, "20"},
                      {"use-time2", kFlag, "0"},
                      {"use-ebu128", kFlag, "0"}};
        int index = 0;
        for (const auto& param : params) putParam(writer, index++, param.name, param.converter, param.value);
        writer.endElement();
    }

    void writeDefinitions(CDocumentWriter& writer) override {
        put(writer, "audio:cvt-time", "time", {{"scale", "0.001"}});
        put(writer, "audio:cvt-gain", "gain", {{"scale-power", "1.0"}, {"scale-threshold", "-1.0"}});
        put(writer, "audio:cvt-percent", "percent", {});
        putMeter(writer, "level", {{"bypass-state-id", "-1"}});
        putMeter(writer, "fixed", {{"bypass-state-id", "-1"}, {"fps", "6"}});
        putMeter(writer, "unreadable", {{"bypass-state-id", "-1"}, {"fps", "many"}});
        putMeter(writer, "diff", {{"bypass-state-id", "-1"}, {"is-diff", "true"}});
        putMeter(writer, "inverted", {{"bypass-state-id", "-1"}, {"is-inverted", "true"}});
        putMeter(writer, "factors", {{"bypass-state-id", "-1"}, {"is-compression", "true"}});
        begin(writer, "audio:process-def", "chain", {{"bypass-state-id", "-1"}, {"is-auto-links", "true"}});
        put(writer, "audio:modGain", "gain", {{"bypass-state-id", "-1"}});
        putMeter(writer, "meter", {{"bypass-state-id", "0"}, {"is-outoforder", "true"}});
        put(writer, "audio:process-link", "link", {{"src", "gain"}, {"dst", "meter"}, {"state-id", "-1"}});
        put(writer, "audio:process-bypass-state", "state",
            {{"id", "0"}, {"param", "meter-enable"}, {"value", "1.0"}, {"is-inverted", "true"}});
        writer.endElement();
        begin(writer, "audio:modHalyardMeter", "reduction", {{"bypass-state-id", "-1"}});
        putParam(writer, 0, "release", "shared::audio.time", "500");
        putParam(writer, 1, "hardness", "shared::audio.percent", "100");
        writer.endElement();
    }

    // A process "p" with a channel of that number in group 2; its slot has a listener.
    void make(const char* definition, int channel = 0, bool hasSecond = false) {
        const auto* const found = dynamic_cast<const CAudioProcessDefBase*>(
            root().findObject(("shared::audio." + std::string(definition)).c_str()));
        ASSERT_NE(found, nullptr);
        env().setDefaultFrameRate(40.0);
        viz().addListener(viz().getSlot("p"));
        m_context.reset(new CAudioProcessContext{env(), params(), *m_pool, &viz()});
        ASSERT_EQ(messageOf(found->createInstance(m_process, "p", *m_context, 2, 0, EProcessRole::kWhole)), "");
        m_channel = {.number = channel, .group = 2};
        m_links[0] = m_process->addInput(0);
        m_links[1] = hasSecond ? m_process->addInput(1) : nullptr;
        for (CAudioLink* const link : m_links)
            if (link != nullptr) link->setTable({&m_channel, 1}, kRate);
    }

    // Plays that many samples of what `at` gives, in blocks of that size.
    template <class At>
    void play(int count, int blockSize, At at, At second) {
        for (int done = 0; done < count; done += blockSize) {
            const int size = std::min(blockSize, count - done);
            env().setStreamSeconds(m_played / kRate);
            beginBlock((m_played + size) / kRate);
            for (CAudioLink* const link : m_links) {
                if (link == nullptr) continue;
                CAudioBufferRef buffer = m_pool->take(size);
                for (int i = 0; i < size; ++i)
                    buffer.samples()[i] = link == m_links[0] ? at(m_played + i) : second(m_played + i);
                link->beginDelivery(size);
                link->deliver(m_channel.number, std::move(buffer));
            }
            m_process->process();
            m_played += size;
        }
    }
    template <class At>
    void play(int count, int blockSize, At at) {
        play(count, blockSize, at, at);
    }
    void set(const char* name, double value) {
        params().getParam(("p." + std::string(name)).c_str()).setFloat(value, 2, nullptr);
    }

    std::unique_ptr<CAudioBufferPool> m_pool = std::make_unique<CAudioBufferPool>();
    std::unique_ptr<CAudioProcessContext> m_context;
    std::unique_ptr<CAudioProcessBase> m_process;
    CAudioChannel m_channel;
    CAudioLink* m_links[2] = {};
    int m_played = 0;
    std::vector<CCreatorRow> m_tags;
};

double tone(int sample) { return 0.5 * std::sin(2.0 * std::numbers::pi * 997.0 / kRate * sample); }
double half(int) { return 0.5; }
double two(int) { return 2.0; }

TEST_F(MeterModulesTest, framesHaveTheirLengthAndTime) {
    const struct {
        const char* definition;
        int frameLength;
    } kCases[] = {{"level", 1104}, {"fixed", 7350}, {"unreadable", 1470}};
    for (const auto& [definition, frameLength] : kCases) {
        Collected first;
        for (const int blockSize : {512, 1, 367}) {
            make(definition, 3);
            const double start = m_played / kRate;
            play(20000, blockSize, tone);
            Collected records = collect();
            ASSERT_EQ(records.count("p"), 20000 / frameLength) << definition << blockSize;
            for (int i = 0; i < records.count("p"); ++i) {
                const CAudioVizDataMeter& record = records.meter("p", i);
                ASSERT_NEAR(record.time - start, (i + 0.5) * frameLength / kRate, 1e-9);
                ASSERT_EQ(std::tuple(record.channel, record.group, record.stackIndex), std::tuple(3, 2, 0));
            }
            m_process.reset();
        }
    }
}

TEST_F(MeterModulesTest, theRateOfDisplaysHoldsFromTheNextFrameOn) {
    make("level");
    play(600, 300, tone);
    collect(100.0);
    play(2000, 100, tone);
    const Collected records = collect();
    ASSERT_EQ(records.count("p"), 4);
    // One frame of 1104 samples, then frames of 442.
    EXPECT_NEAR(records.meter("p", 0).time * kRate, 552.0, 1e-6);
    EXPECT_NEAR(records.meter("p", 1).time * kRate, 1104 + 221, 1e-6);
    EXPECT_NEAR(records.meter("p", 3).time * kRate, 1104 + 884 + 221, 1e-6);
}

TEST_F(MeterModulesTest, gainsScaleAndTimesStartOver) {
    make("level");
    play(44100, 512, tone);
    const double peak = collect().meter("p", 38).peak;
    EXPECT_NEAR(peak, 0.5, 1e-3);

    set("gain", 2.0);
    set("peak-gain", 0.5);
    play(1104 * 2, 512, [](int) { return 0.0; });
    Collected records = collect();
    EXPECT_NEAR(records.meter("p", 1).peak, peak, 1e-9) << "held, and scaled by both";
    EXPECT_GT(records.meter("p", 1).level, 0.5) << "still in its release";

    const double start = m_played / kRate;
    set("use-time2", 1.0);
    play(1104, 512, half);
    records = collect();
    ASSERT_EQ(records.count("p"), 1);
    EXPECT_NEAR(records.meter("p", 0).time, start + 552.0 / kRate, 1e-9);
    EXPECT_NEAR(records.meter("p", 0).level, 1.0, 0.02) << "a short time to rise, from nothing";

    // What a new measurement begins with, once the host begins anew.
    m_process->reset();
    play(1104, 512, [](int) { return 0.0; });
    EXPECT_EQ(collect().meter("p", 0).level, 0.0);
}

TEST_F(MeterModulesTest, theDifferenceIsToTheSameChannelOfPort1) {
    make("diff", 1, true);
    play(
        44100, 512, tone, +[](int sample) { return 0.5 * tone(sample); });
    EXPECT_NEAR(collect().meter("p", 38).level, 2.0, 1e-3);
    m_process.reset();

    // With nothing there a channel is held against itself, and with silence on it against silence.
    make("diff", 1);
    play(2208, 512, tone);
    EXPECT_EQ(collect().meter("p", 1).level, 1.0);
}

TEST_F(MeterModulesTest, attributesChooseWhatIsShown) {
    make("inverted");
    play(22080, 512, two);
    EXPECT_NEAR(collect().meter("p", 19).level, 0.5, 1e-3);
    play(1104, 512, half);
    EXPECT_NEAR(collect().meter("p", 0).peak, 0.5, 1e-3) << "the reciprocal of what is held";
    m_process.reset();

    make("factors");
    play(22080, 512, half);
    play(1104, 512, two);
    const Collected records = collect();
    EXPECT_NEAR(records.meter("p", 19).level, 0.5, 1e-3);
    EXPECT_NEAR(records.meter("p", 20).peak, 0.5, 1e-3) << "the smallest is held";
}

TEST_F(MeterModulesTest, loudnessComesWithItsMemory) {
    make("level");
    play(1000, 512, tone);
    set("use-ebu128", 1.0);
    collect();
    play(22050, 512, tone);
    const Collected records = collect();
    EXPECT_NEAR(records.meter("p", records.count("p") - 1).level, 0.5 / std::numbers::sqrt2, 0.01);
}

TEST_F(MeterModulesTest, gainReductionFollowsHardnessAtOnce) {
    make("reduction");
    play(1104, 512, two);
    Collected records = collect();
    EXPECT_NEAR(records.meter("p", 0).level, 0.5, 1e-9);
    EXPECT_EQ(records.meter("p", 0).level, records.meter("p", 0).peak);
    set("hardness", 0.0);
    set("release", 0.0);
    play(1104, 512, two);
    EXPECT_NEAR(collect().meter("p", 0).level, 0.4819, 1e-3);
}

TEST_F(MeterModulesTest, aMeterIsInTheGraphWhileSomebodyListens) {
    make("chain");
    VizSlot& slot = viz().getSlot("p.meter");
    play(4096, 512, tone);
    EXPECT_EQ(collect().count("p.meter"), 0);
    for (int round = 0; round < 3; ++round) {
        viz().addListener(slot);
        play(5 * 512, 512, tone);
        EXPECT_GE(collect().count("p.meter"), 1) << round;
        const int held = m_pool->heldCount();
        viz().removeListener(slot);
        play(3 * 512, 512, tone);
        EXPECT_EQ(collect().count("p.meter"), 0) << round;
        EXPECT_LT(m_pool->heldCount(), held) << "the process has gone, and its memory is back";
    }
    m_process->detach();
}

}  // namespace
}  // namespace brt
