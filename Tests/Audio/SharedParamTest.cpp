// SPDX-License-Identifier: LicenseRef-Halyard
// Parameters whose values all instances share, the table of MIDI controllers, and hosts that hold everything up.
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <thread>

#include "Audio/CAudioCCTable.h"
#include "Audio/CAudioExtParam.h"
#include "Audio/CAudioExtParamHostBridge.h"
#include "Audio/CAudioParamConverter.h"
#include "Core/CAppData.h"
#include "ParamFixture.h"

namespace brt {
namespace {

// Two collectors, as two instances have them, and settings in a folder of the test's own.
class SharedParamTest : public ParamFixture {
protected:
    void SetUp() override {
        char folder[] = "/tmp/halyard-shared-XXXXXX";
        ASSERT_NE(mkdtemp(folder), nullptr);
        m_folder = folder;
        setenv("XDG_CONFIG_HOME", folder, 1);
        ParamFixture::SetUp();
        CAttrMap attributes;
        attributes.findOrInsert("env").setText("^audio-env");
        EXPECT_EQ(messageOf(root().createChild(m_other, "audio:param-collector", "other-collector", kTemplateOptional,
                                               nullptr, &attributes)),
                  "");
        m_percent = dynamic_cast<CAudioParamConverter*>(add(root(), "percent", "audio:cvt-percent"));
        m_text = dynamic_cast<CAudioParamConverter*>(add(root(), "text", "audio:cvt-text"));
    }
    void TearDown() override {
        ParamFixture::TearDown();
        unsetenv("XDG_CONFIG_HOME");
        std::error_code dropped;
        std::filesystem::remove_all(m_folder, dropped);
    }

    // A fraction, shown as percent with one decimal, of either instance.
    CAudioParam& percent(CAudioParamCollector& collector, const char* name, double defaultValue = 0.5) {
        CAudioParamInfo& made = info(name, {defaultValue});
        made.maxValues[0] = 1.0;
        made.converters.append(m_percent);
        CAudioParam& param = collector.getParam(name);
        param.setInfo(made, {});
        return param;
    }
    CAudioParamCollector& other() { return *m_other; }
    static CAppData& store() { return CAppData::local(); }
    static std::string stored(const char* key) {
        CString value;
        store().getString(value, key, "(nothing)");
        return text(value);
    }

    const CAudioParamConverter* m_percent = nullptr;
    const CAudioParamConverter* m_text = nullptr;

private:
    CAudioParamCollector* m_other = nullptr;
    std::string m_folder;
};

TEST_F(SharedParamTest, instancesFollowEachOtherWithoutAnEcho) {
    CAudioParam& mine = percent(collector(), "time", 0.12345);
    CAudioParam& theirs = percent(other(), "time", 0.12345);
    collector().addShared("time", store(), "a-time");
    other().addShared("time", store(), "a-time");
    EXPECT_DOUBLE_EQ(mine.getFloat(0, 0, 0), 0.123) << "the default as its text shows it";
    EXPECT_EQ(stored("a-time"), "(nothing)") << "starting stores nothing";

    ChangeLog ours(collector(), mine);
    ChangeLog seen(other(), theirs);
    mine.setFloat(0.256, 0, this);
    EXPECT_EQ(stored("a-time"), "25.6");
    EXPECT_DOUBLE_EQ(theirs.getFloat(0, 0, 0), 0.256);
    theirs.setFloat(0.75, 0, this);
    EXPECT_EQ(mine.getFloat(0, 0, 0), 0.75);
    EXPECT_EQ(ours.take().size(), 2U) << "one change by each";
    EXPECT_EQ(seen.take().size(), 2U);

    store().setString("a-time", "nonsense");
    EXPECT_EQ(mine.getFloat(0, 0, 0), 0.75);
    store().setString("a-time", "900");
    EXPECT_EQ(mine.getFloat(0, 0, 0), 1.0) << "held within the range";

    CAudioParam& late = percent(other(), "late");
    other().addShared("late", store(), "a-time");
    EXPECT_EQ(late.getFloat(0, 0, 0), 1.0) << "what is stored, held within the range";
}

TEST_F(SharedParamTest, textsAndBytesTravelAsTheyAre) {
    const auto bytesOf = [](CAudioParam& param) {
        const CRankedLock lock(param.section());
        const auto* const item =
            dynamic_cast<const CAudioParamDataItemRaw*>(param.control().data().find(param.control().value(0, 0, 0.0)));
        return item == nullptr ? std::string()
                               : std::string(item->bytes().data(), item->bytes().data() + item->bytes().size());
    };
    CAudioParam* names[2];
    CAudioParam* palettes[2];
    CAudioParamInfo& rawInfo = info("palette", {0}, {.dataType = EAudioDataType::kRaw});
    int i = 0;
    for (CAudioParamCollector* const each : {&collector(), &other()}) {
        CAudioParamInfo& nameInfo = info("name", {}, {.dataType = EAudioDataType::kString});
        nameInfo.converters.append(m_text);
        EXPECT_EQ(messageOf(nameInfo.defaults.parseDefValues(nameInfo, "Default", "")), "");
        names[i] = &each->getParam("name");
        names[i]->setInfo(nameInfo, {});
        palettes[i] = &each->getParam("palette");
        palettes[i]->setInfo(rawInfo, {});
        each->addShared("name", store(), "a-name");
        each->addShared("palette", store(), "a-palette");
        ++i;
    }
    EXPECT_EQ(text(names[0]->getString(0, 0)), "Default");
    names[0]->setString(0, 0, "Night, with a comma", this);
    EXPECT_EQ(text(names[1]->getString(0, 0)), "Night, with a comma");
    CByteBuffer bytes;
    bytes.assign("\0\1\2", 3);
    palettes[1]->setRaw(0, 0, bytes, this);
    EXPECT_EQ(bytesOf(*palettes[0]), std::string("\0\1\2", 3));
}

TEST_F(SharedParamTest, twoInstancesOnTwoThreadsEndWithOneValue) {
    CAudioParamCollector* const instances[] = {&collector(), &other()};
    for (CAudioParamCollector* const each : instances) {
        for (const char* const name : {"a", "b"}) {
            percent(*each, name);
            each->addShared(name, store(), name);
        }
    }
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(1);
    std::vector<std::thread> threads;
    for (int t = 0; t < 2; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; std::chrono::steady_clock::now() < end; ++i)
                instances[t]->getParam(i % 2 == 0 ? "a" : "b").setFloat((t * 50 + i % 50) * 0.01, 0, this);
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (const char* const name : {"a", "b"}) {
        const double value = collector().getParam(name).getFloat(0, 0, -1);
        EXPECT_EQ(value, other().getParam(name).getFloat(0, 0, -1)) << name;
        bool ok = false;
        EXPECT_EQ(value, m_percent->parseClamped(*collector().getParam(name).info(), 0, stored(name).c_str(), ok));
    }
}

TEST_F(SharedParamTest, controllersFindTheirParametersByName) {
    CAttrMap attributes;
    attributes.findOrInsert("param-collector").setText("param-collector");
    attributes.findOrInsert("ext-name").setText("Gain");
    attributes.findOrInsert("param-name").setText("gain");
    CAudioExtParam* gain = nullptr;
    EXPECT_EQ(messageOf(root().createChild(gain, "audio:ext-param", "gain", kTemplateOptional, nullptr, &attributes)),
              "");
    const auto setMap = [](std::vector<std::pair<std::uint32_t, const char*>> rows, std::uint32_t count) {
        CWriteSeqBuffer stream(256);
        const auto add = [&](std::uint32_t number) { EXPECT_EQ(messageOf(stream.write(&number, 4)), ""); };
        add(count);
        for (const auto& [controller, name] : rows) {
            add(controller);
            EXPECT_EQ(messageOf(stream.writeString(name)), "");
        }
        CByteBuffer bytes;
        stream.moveTo(bytes);
        store().setData("ccmap", bytes, nullptr, appDataTag::kRecord);
    };
    setMap({{7, "gain"}}, 1);
    auto* const table = dynamic_cast<CAudioCCTable*>(add(root(), "cctable", "audio:cctable"));
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->find(7), gain) << "what was stored before";
    setMap({{0, "gain"}, {127, "gain"}, {128, "gain"}, {3, "nobody"}, {4, "param-collector"}}, 5);
    EXPECT_EQ(table->find(0), gain);
    EXPECT_EQ(table->find(127), gain);
    for (const int controller : {-1, 3, 4, 7, 128}) EXPECT_EQ(table->find(controller), nullptr) << controller;
    setMap({{1, "gain"}}, 2000000000);
    EXPECT_EQ(table->find(0), nullptr) << "a damaged map leaves nothing of the last one";
    EXPECT_EQ(table->find(1), nullptr);
}

// Its callback waits, for a while, until another thread has done something.
class WaitingHost final : public CAudioExtParamHostBridge {
public:
    void hostAutomate(int, double) override {
        std::unique_lock lock(m_mutex);
        m_isInside = true;
        m_changed.notify_all();
        m_wasReleased = m_changed.wait_for(lock, std::chrono::seconds(20), [&] { return m_isReleased; });
    }
    void hostUpdateDisplay() override {}
    void hostBeginEdit(int) override {}
    void hostEndEdit(int) override {}

    void waitUntilInside() {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return m_isInside; });
    }
    void release() {
        const std::lock_guard lock(m_mutex);
        m_isReleased = true;
        m_changed.notify_all();
    }
    bool wasReleased() const { return m_wasReleased; }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_isInside = false;
    bool m_isReleased = false;
    bool m_wasReleased = false;
};

TEST_F(SharedParamTest, aHostMayWaitForAnotherThreadThatWritesTheSameParameter) {
    CAudioParam& gain = percent(collector(), "gain");
    CAttrMap attributes;
    attributes.findOrInsert("param-collector").setText("param-collector");
    attributes.findOrInsert("ext-name").setText("Gain");
    attributes.findOrInsert("param-name").setText("gain");
    CAudioExtParam* ext = nullptr;
    EXPECT_EQ(messageOf(root().createChild(ext, "audio:ext-param", "gain", kTemplateOptional, nullptr, &attributes)),
              "");
    WaitingHost host;
    ext->setHostBridge(&host, 0);
    std::thread window([&] { gain.setFloat(0.25, 0, this); });
    host.waitUntilInside();
    ext->setNormal(0.75);  // the host, on its own thread
    host.release();
    window.join();
    EXPECT_TRUE(host.wasReleased()) << "the second write waited for the first one's callback";
    EXPECT_EQ(gain.getFloat(0, 0, 0), 0.75);
}

TEST_F(SharedParamTest, memoryIsOutOfBoundsUnderTheSwapLock) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            const CSwapLock lock(collector().env().section());
            delete new CAudioParamUpdateCopy;
        },
        "");
}

}  // namespace
}  // namespace brt
