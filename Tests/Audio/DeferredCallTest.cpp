// SPDX-License-Identifier: LicenseRef-Halyard
// Host parameters, calls that wait for the last lock, filters.
#include "ParamFixture.h"

#include <cmath>

#include "Audio/CAudioExtParam.h"
#include "Audio/CAudioExtParamHostBridge.h"
#include "Audio/CAudioParamConverter.h"
#include "Audio/CAudioParamFilter.h"
#include "Audio/CAudioParamLocks.h"

namespace brt {
namespace {

using Lines = std::vector<std::string>;

class Host final : public CAudioExtParamHostBridge {
public:
    void hostAutomate(int index, double value) override {
        add("automate " + std::to_string(index) + " " + std::to_string(value).substr(0, 4));
        if (m_whenAutomated) std::exchange(m_whenAutomated, nullptr)();
    }
    void hostUpdateDisplay() override { add("display"); }
    void hostBeginEdit(int index) override { add("begin " + std::to_string(index)); }
    void hostEndEdit(int index) override { add("end " + std::to_string(index)); }

    Lines take() { return std::exchange(m_lines, {}); }
    std::function<void()> m_whenAutomated;

private:
    void add(const std::string& line) {
        EXPECT_FALSE(CDeferralScope::isActive()) << line << " under a lock";
        m_lines.push_back(line);
    }
    Lines m_lines;
};

class DeferredCallTest : public ParamFixture {
protected:
    // A host parameter of number `index` over a parameter of percent.
    CAudioExtParam& extParam(CAudioParam& param, int index, const char* name = "Name") {
        CAudioExtParam* ext = nullptr;
        const std::string child = "ext" + std::to_string(index);
        EXPECT_EQ(messageOf(makeExtParam(ext, param, child.c_str(), name)), "");
        ext->setHostBridge(&m_host, index);
        return *ext;
    }
    CError* makeExtParam(CAudioExtParam*& ext, CAudioParam& param, const char* child, const char* name) {
        CAttrMap attributes;
        attributes.findOrInsert("param-collector").setText("param-collector");
        attributes.findOrInsert("ext-name").setText(name);
        attributes.findOrInsert("param-name").setText(param.name());
        return root().createChild(ext, "audio:ext-param", child, kTemplateOptional, nullptr, &attributes);
    }
    CAudioParam& percentParam(const char* name) {
        CObject* const converter = add(root(), "cvt", "audio:cvt-percent");
        CAudioParamInfo& made = info(name, {0.5});
        made.maxValues[0] = 1.0;
        made.converters.append(dynamic_cast<CAudioParamConverter*>(converter));
        CAudioParam& param = collector().getParam(name);
        param.setInfo(made, {});
        return param;
    }
    Host m_host;
};

TEST_F(DeferredCallTest, theHostIsToldInOrderWhenTheLastLockHasGone) {
    CAudioParam& gain = percentParam("gain");
    extParam(gain, 3);
    m_host.take();
    {
        const CRankedLock lock(gain.section());
        CHostCall::defer(m_host, CHostCall::EKind::kBeginEdit, 3);
        gain.setFloat(0.1, 0, this);
        gain.setFloat(0.2, 0, this);
        CHostCall::defer(m_host, CHostCall::EKind::kEndEdit, 3);
        EXPECT_EQ(m_host.take(), Lines{});
    }
    EXPECT_EQ(m_host.take(), (Lines{"begin 3", "automate 3 0.20", "end 3"}));
}

TEST_F(DeferredCallTest, aHostMayCallBackFromInsideACall) {
    CAudioParam& gain = percentParam("gain");
    CAudioExtParam& ext = extParam(gain, 0);
    m_host.take();
    m_host.m_whenAutomated = [&] {
        gain.setFloat(0.9, 0, this);
        ext.setNormal(0.25);
        CHostCall::defer(m_host, CHostCall::EKind::kUpdateDisplay);
    };
    gain.setFloat(0.1, 0, this);
    EXPECT_EQ(m_host.take(), (Lines{"automate 0 0.10", "automate 0 0.90", "display"}));
    EXPECT_EQ(gain.getFloat(0, 0, 0), 0.25);
}

TEST_F(DeferredCallTest, aHostWritesWithoutHearingItsOwnEcho) {
    CAudioParam& gain = percentParam("gain");
    CAudioExtParam& ext = extParam(gain, 0);
    setActive(true);
    playChunk();
    m_host.take();
    gain.setFloat(1.0 / 3.0, 0, this);
    playChunk();
    m_host.take();
    ext.setNormal(static_cast<float>(ext.getNormal()));
    EXPECT_EQ(gain.getFloat(0, 0, 0), 1.0 / 3.0) << "single precision wears nothing down";
    EXPECT_EQ(collector().waitingCount(), 0);
    for (const double bad : {std::nan(""), HUGE_VAL, -HUGE_VAL}) ext.setNormal(bad);
    EXPECT_EQ(collector().waitingCount(), 0);
    ext.setNormal(1.5);
    EXPECT_EQ(ext.getNormal(), 1.0);
    EXPECT_EQ(gain.getFloat(0, 0, 0), 1.0);
    EXPECT_EQ(m_host.take(), Lines{});
    gain.setFloat(0.2, 1, this);
    EXPECT_EQ(m_host.take(), Lines{}) << "another group";
}

TEST_F(DeferredCallTest, aHostsTextsAndNames) {
    CAudioParam& gain = percentParam("gain");
    CAudioExtParam& ext = extParam(gain, 0);
    ext.setNormal(0.125);
    EXPECT_EQ(ext.getText(), "12.5");
    EXPECT_EQ(ext.normalToText(std::nan("")), "0.0");
    EXPECT_EQ(ext.textToNormal("75"), 0.75);
    EXPECT_EQ(ext.textToNormal("loud"), 0.5) << "the default";
    CAudioExtParam* refused = nullptr;
    EXPECT_EQ(messageOf(makeExtParam(refused, gain, "long", "Hardness")),
              "Externalized parameter name 'Hardness' is too long");
    EXPECT_EQ(messageOf(makeExtParam(refused, gain, "none", "")), "Externalized parameter name '' is too long");
    CAudioExtParam* early = nullptr;
    EXPECT_EQ(messageOf(makeExtParam(early, collector().getParam("later"), "early", "Early")), "");
    EXPECT_EQ(early->getText(), "");
    EXPECT_EQ(early->textToNormal("5"), 0.5);
}

TEST_F(DeferredCallTest, soloedGroupsKeepTheSoloStageIn) {
    CAudioParam& solo = param("io.channel-group-solo", {1});
    CAudioParam& bypass = param("group-solo-bypass", {0}, {.isSingleGroup = true, .isSingleElement = true});
    CStringList sources;
    CStringList destinations;
    sources.append("io.channel-group-solo");
    destinations.append("group-solo-bypass");
    CAudioParamFilterBypassGroupSolo filter;
    EXPECT_EQ(messageOf(filter.init(collector(), sources, destinations)), "");
    filter.activate();
    EXPECT_EQ(bypass.getFloat(0, 0, -1), 1.0) << "a group that was never set counts as not soloed";
    {
        CAudioParamQueue batch;
        CAudioParam* const params[] = {&solo};
        const CAudioParamLocks locks(params);
        solo.setFloatAt(3, 0, 1.0, this, {.batch = &batch});
        EXPECT_EQ(bypass.getFloat(0, 0, -1), 0.0);
        EXPECT_EQ(batch.count(), 2) << "what the filter writes travels in the same batch";
        EXPECT_TRUE(bypass.section().isHeld()) << "until the batch has gone over";
        collector().handOver(batch);
    }
    playChunk();
    EXPECT_EQ(bypass.audio().value(0, 0, -1), 0.0);
    solo.setFloat(0.0, 3, this);
    EXPECT_EQ(bypass.getFloat(0, 0, -1), 1.0);
}

TEST_F(DeferredCallTest, filtersSayWhatIsWrongWithTheirParameters) {
    CStringList none;
    CStringList one;
    CStringList ten;
    one.append("x");
    for (int i = 0; i < 10; ++i) ten.append("p" + std::to_string(i));
    const auto message = [&](const CStringList& sources, const CStringList& destinations) {
        CAudioParamFilterBypassGroupSolo filter;
        return messageOf(filter.init(collector(), sources, destinations));
    };
    EXPECT_EQ(message(none, one), "Not enough source parameters 0 defined in the param filter (required 1).");
    EXPECT_EQ(message(ten, one), "Too many source parameters 10 defined in the param filter.");
    EXPECT_EQ(message(one, none), "Not enough destination parameters 0 defined in the param filter (required 1).");
    EXPECT_EQ(message(one, ten), "Too many destination parameters 10 defined in the param filter.");
}

TEST_F(DeferredCallTest, locksInTheWrongOrderEndTheProgram) {
    CAudioParam& first = param("a", {5});
    CAudioParam& second = param("b", {5});
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            const CRankedLock outer(second.section());
            const CRankedLock inner(first.section());
        },
        "");
    const CRankedLock outer(first.section());
    const CRankedLock inner(second.section());
    const CRankedLock again(first.section());
    EXPECT_TRUE(first.section().isHeld());
}

}  // namespace
}  // namespace brt
