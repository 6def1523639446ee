// SPDX-License-Identifier: LicenseRef-Halyard
// Containers: which children they have, how paths meet, what they do with definitions that make no sense.
#include <cmath>
#include <deque>

#include "Audio/AudioTags.h"
#include "Audio/CAudioProcess.h"
#include "Audio/CAudioProcessTerminalBase.h"
#include "Core/TreeFixture.h"
#include "Modules/CAudioGraph.h"
#include "Modules/CModOutput.h"
#include "Modules/ModuleTags.h"

namespace brt {
namespace {

using Samples = std::vector<double>;

// Adds "plus" and delays by "delay" samples, of which it tells.
class CShiftModule final : public CAudioModule {
public:
    explicit CShiftModule(CAudioProcessTerminalBase& process) : CAudioModule(process) {
        ++s_alive;
        const CAudioProcessDefBase& definition = process.definition();
        m_line.assign(static_cast<std::size_t>(definition.getAttrInt("delay")), 0.0);
        m_plus = definition.getAttrDouble("plus");
    }
    ~CShiftModule() override { --s_alive; }
    void update() override {
        if (isFullUpdate()) setLatency(0, static_cast<int>(m_line.size()));
    }
    void process() {
        output(0).buffer = pool().take(blockLength());
        const double* const in = inputSamples(0);
        for (int i = 0; i < blockLength(); ++i) {
            m_line.push_back(in[i] + m_plus);
            output(0).buffer.samples()[i] = m_line.front();
            m_line.pop_front();
        }
    }
    static inline int s_alive = 0;

private:
    std::deque<double> m_line;
    double m_plus;
};

class CShiftDef final : public CAudioProcessDefBase {
public:
    static void describeClass(CClassInfo& info) {
        CAudioProcessDefBase::describeClass(info);
        info.acceptAnyAttribute();
    }
    std::unique_ptr<CAudioProcessBase> createProcess() const override {
        return std::make_unique<CAudioProcessTerminal<CShiftModule>>();
    }
};

class CFailing final : public CAudioProcessBase {
    CError* init() override {
        return makeError(nullptr, __FILE__, __LINE__, path(), "@brtstr_CFailing_init It fails.");
    }
};
class CFailingDef final : public CAudioProcessDefBase {
public:
    std::unique_ptr<CAudioProcessBase> createProcess() const override { return std::make_unique<CFailing>(); }
};

class SequenceTest : public TreeFixture {
protected:
    struct Child {
        const char* tag;
        const char* name;
        std::vector<std::pair<const char*, const char*>> attributes = {};
    };

    // A container of those children, the main process of a graph of one channel.
    void build(const std::vector<Child>& children, const char* isAutoLinks = "false") {
        addResource("Graph.xml", document([&](CDocumentWriter& writer) {
                        writer.beginElement("audio:process-def", "main");
                        writer.attribute("is-auto-links", isAutoLinks);
                        writer.attribute("bypass-state-id", "-1");
                        for (const Child& child : children) {
                            writer.beginElement(child.tag, child.name);
                            bool hasState = false;
                            for (const auto& [key, value] : child.attributes) {
                                writer.attribute(key, value);
                                hasState = hasState || CStringView(key) == "bypass-state-id";
                            }
                            if (!hasState && CStringView(child.tag) != "audio:process-link")
                                writer.attribute("bypass-state-id", "-1");
                            writer.endElement();
                        }
                        writer.endElement();
                        writer.beginElement("audio:modOutput", "output");
                        writer.attribute("bypass-state-id", "-1");
                        writer.endElement();
                    }));
        static constexpr CCreatorRow kTags[] = {creatorRow<CFailingDef>("test:failing"),
                                                creatorRow<CShiftDef>("test:shift")};
        const std::span<const CCreatorRow> tables[] = {coreTags(), audioTags(), moduleTags(), kTags};
        CApplication::start({tables, resourceTable(), "Graph.xml"});
        add(root(), "audio-env", "audio:audio-env");
        CAttrMap attributes;
        attributes.findOrInsert("env").setText("^audio-env");
        EXPECT_EQ(messageOf(root().createChild(m_collector, "audio:param-collector", "param-collector",
                                               kTemplateOptional, nullptr, &attributes)),
                  "");
        m_graph = std::make_unique<CAudioGraph>(m_collector->env(), *m_collector, nullptr);
        CAudioProcessDefBase* main = nullptr;
        CAudioProcessDefBase* output = nullptr;
        EXPECT_EQ(messageOf(root().findObjectChecked(main, "shared::main")), "");
        EXPECT_EQ(messageOf(root().findObjectChecked(output, "shared::output")), "");
        EXPECT_EQ(messageOf(m_graph->start(*main, "main", *output, "output")), "");
        CAudioChannel channel;
        m_graph->setInput({&channel, 1}, 48000.0);
    }

    void TearDown() override {
        m_graph.reset();
        EXPECT_EQ(CShiftModule::s_alive, 0);
        releaseTree();
        m_info.reset();
        TreeFixture::TearDown();
    }

    // 1, 2, 3, ... through the graph, or what the steps make of it.
    Samples count(int length, int block = 16) {
        Samples out;
        for (int start = 0; start < length; start += block) {
            Samples in;
            for (int i = 0; i < block; ++i, m_counted += m_step) in.push_back(m_counted);
            Samples part(in.size());
            const double* const inputs[] = {in.data()};
            double* const outputs[] = {part.data()};
            m_graph->process(inputs, outputs, 1, block);
            out.insert(out.end(), part.begin(), part.end());
        }
        return out;
    }
    void setState(double value) {
        CAudioParam& param = m_collector->getParam("main.off");
        if (m_info == nullptr) {
            m_info = std::make_unique<CAudioParamInfo>();
            m_info->name = "off";
            m_info->minValues.append(0.0);
            m_info->maxValues.append(1.0);
            const double zero = 0.0;
            CAudioParamUpdate update;
            update.elementCount = 1;
            update.values = &zero;
            m_info->defaults.setFormat({});
            m_info->defaults.apply(update);
            param.setInfo(*m_info, {});
        }
        param.setFloat(value, 0, this);
    }
    int latency() const { return m_graph->output().largestLatencySamples(); }

    std::unique_ptr<CAudioParamInfo> m_info;  // of the state; goes after the tree
    CAudioParamCollector* m_collector = nullptr;
    std::unique_ptr<CAudioGraph> m_graph;
    double m_counted = 1.0;
    double m_step = 1.0;
};

TEST_F(SequenceTest, pathsOfDifferentLatencyMeetInStep) {
    build({{"test:shift", "slow", {{"delay", "10"}}},
           {"test:shift", "fast", {{"delay", "3"}}},
           {"audio:process-link", "", {{"src", "*"}, {"dst", "slow"}}},
           {"audio:process-link", "", {{"src", "*"}, {"dst", "fast"}}},
           {"audio:process-link", "", {{"src", "slow"}, {"dst", "*"}}},
           {"audio:process-link", "", {{"src", "fast"}, {"dst", "*"}}},
           {"audio:process-link", "", {{"src", "nobody"}, {"dst", "*"}}},
           {"audio:process-link", "", {{"src", "slow"}, {"dst", "nobody"}}}});
    const Samples out = count(64);
    EXPECT_EQ(latency(), 10);
    for (int i = 10; i < 64; ++i) ASSERT_EQ(out[static_cast<std::size_t>(i)], 2.0 * (i - 10 + 1)) << i;
}

// The path that was there alone fades to its new delay; it does not stop until its line is full.
TEST_F(SequenceTest, aPathThatPlaysFadesToTheLatencyOfOneThatComes) {
    build({{"audio:process-bypass-state", "off", {{"id", "7"}, {"param", "off"}, {"value", "1.0"}}},
           {"test:shift", "fast"},
           {"test:shift", "slow", {{"delay", "20"}, {"bypass-state-id", "7"}}},
           {"audio:process-link", "", {{"src", "*"}, {"dst", "fast"}}},
           {"audio:process-link", "", {{"src", "*"}, {"dst", "slow"}}},
           {"audio:process-link", "", {{"src", "fast"}, {"dst", "*"}}},
           {"audio:process-link", "", {{"src", "slow"}, {"dst", "*"}}}});
    setState(1.0);
    m_step = 0.0;
    count(2048);
    setState(0.0);
    const Samples out = count(2048);
    EXPECT_EQ(latency(), 20);
    for (int i = 0; i < 20; ++i) ASSERT_NEAR(out[static_cast<std::size_t>(i)], 1.0, 0.01) << i;
    for (int i = 20; i < 2048; ++i) ASSERT_NEAR(out[static_cast<std::size_t>(i)], 2.0, 1e-9) << i;
}

TEST_F(SequenceTest, meansAndMaximaOfSeveralSources) {
    for (const char* const mode : {"avg", "max"}) {
        build({{"test:shift", "a", {{"plus", "1"}}},
               {"test:shift", "b", {{"plus", "5"}}},
               {"test:shift", "c", {{"plus", "-3"}}},
               {"test:shift", "mixed", {{"input-combo-mode", mode}}},
               {"audio:process-link", "", {{"src", "*"}, {"dst", "a"}}},
               {"audio:process-link", "", {{"src", "*"}, {"dst", "b"}}},
               {"audio:process-link", "", {{"src", "*"}, {"dst", "c"}}},
               {"audio:process-link", "", {{"src", "a"}, {"dst", "mixed"}}},
               {"audio:process-link", "", {{"src", "b"}, {"dst", "mixed"}}},
               {"audio:process-link", "", {{"src", "c"}, {"dst", "mixed"}}},
               {"audio:process-link", "", {{"src", "mixed"}, {"dst", "*"}}}});
        m_counted = 1.0;
        const Samples out = count(16);
        EXPECT_NEAR(out[3], CStringView(mode) == "avg" ? 4.0 + 1.0 : 4.0 + 5.0, 1e-12) << mode;
        TearDown();
        SetUp();
    }
}

TEST_F(SequenceTest, aStateTakesAChildAwayAndItsLatencyWithIt) {
    build({{"audio:process-bypass-state", "off", {{"id", "7"}, {"param", "off"}, {"value", "1.0"}}},
           {"test:shift", "first", {{"plus", "100"}}},
           {"test:shift", "second", {{"delay", "20"}, {"bypass-state-id", "7"}}},
           {"audio:modNode", "node"}},
          "true");
    EXPECT_EQ(count(32)[25], 100.0 + 6.0);
    EXPECT_EQ(latency(), 20);
    EXPECT_EQ(CShiftModule::s_alive, 2);
    setState(1.0);
    count(32);
    EXPECT_EQ(latency(), 0);
    EXPECT_EQ(CShiftModule::s_alive, 1) << "what nobody uses does not exist";
    EXPECT_EQ(count(16)[0], 100.0 + 65.0);
    setState(0.0);
    count(32);
    EXPECT_EQ(latency(), 20);
    EXPECT_EQ(CShiftModule::s_alive, 2);
}

TEST_F(SequenceTest, branchesThatTheInputDoesNotReachAreDead) {
    build({{"test:shift", "live"},
           {"test:shift", "fedByPortOne"},
           {"test:shift", "fedByTheDead"},
           {"audio:process-link", "", {{"src", "*"}, {"dst", "live"}}},
           {"audio:process-link", "", {{"src", "live"}, {"dst", "*"}}},
           {"audio:process-link", "", {{"src", "live"}, {"dst", "fedByPortOne/1"}}},
           {"audio:process-link", "", {{"src", "fedByPortOne"}, {"dst", "fedByTheDead"}}},
           {"audio:process-link", "", {{"src", "fedByTheDead"}, {"dst", "*"}}}});
    EXPECT_EQ(count(16)[3], 4.0);
    EXPECT_EQ(CShiftModule::s_alive, 1);
}

TEST_F(SequenceTest, aCircleIsToldAndTheRestPlaysOn) {
    build({{"test:shift", "live"},
           {"test:shift", "a"},
           {"test:shift", "b"},
           {"audio:process-link", "", {{"src", "*"}, {"dst", "live"}}},
           {"audio:process-link", "", {{"src", "live"}, {"dst", "*"}}},
           {"audio:process-link", "", {{"src", "live"}, {"dst", "a"}}},
           {"audio:process-link", "", {{"src", "b"}, {"dst", "a"}}},
           {"audio:process-link", "", {{"src", "a"}, {"dst", "b"}}}});
    EXPECT_EQ(count(16)[3], 4.0);
    EXPECT_EQ(log().back(), "main // process seq err");
}

// The output's first link brings nothing: the others tell how long the block is.
TEST_F(SequenceTest, aCircleBesideOthersThatFeedTheOutputIsSilent) {
    build({{"test:shift", "a"},
           {"test:shift", "b"},
           {"test:shift", "x"},
           {"test:shift", "y"},
           {"audio:process-link", "", {{"src", "*"}, {"dst", "a"}}},
           {"audio:process-link", "", {{"src", "a"}, {"dst", "b"}}},
           {"audio:process-link", "", {{"src", "b"}, {"dst", "a"}}},
           {"audio:process-link", "", {{"src", "b"}, {"dst", "*"}}},
           {"audio:process-link", "", {{"src", "*"}, {"dst", "x"}}},
           {"audio:process-link", "", {{"src", "*"}, {"dst", "y"}}},
           {"audio:process-link", "", {{"src", "x"}, {"dst", "*"}}},
           {"audio:process-link", "", {{"src", "y"}, {"dst", "*"}}}});
    const Samples out = count(1024, 512);
    for (int i = 0; i < 1024; ++i) ASSERT_EQ(out[static_cast<std::size_t>(i)], 2.0 * (i + 1)) << i;
}

TEST_F(SequenceTest, aChildThatCannotBeMadeIsToldAndLeftOut) {
    build({{"test:shift", "first", {{"plus", "100"}}}, {"test:failing", "second"}, {"test:shift", "third"}}, "true");
    EXPECT_EQ(count(16)[3], 104.0);
    bool isTold = false;
    for (const std::string& line : log()) isTold = isTold || line == "It fails.";
    EXPECT_TRUE(isTold);
}

TEST_F(SequenceTest, withoutChildrenItPassesItsInputOn) {
    build({}, "true");
    EXPECT_EQ(count(16)[3], 4.0);
}

TEST_F(SequenceTest, aContainerAsksForADefinitionOfItsKind) {
    build({{"test:shift", "live"}}, "true");
    CAudioProcess container;
    CAudioProcessDefBase* child = nullptr;
    EXPECT_EQ(messageOf(root().findObjectChecked(child, "shared::main.live")), "");
    const CAudioProcessContext context{m_collector->env(), *m_collector, m_graph->pool()};
    container.setPlace({"x", child, &context, 0, 0, false});
    EXPECT_EQ(messageOf(container.init()), "Audio process def of invalid class supplied.");
}

}  // namespace
}  // namespace brt
