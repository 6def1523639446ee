// SPDX-License-Identifier: LicenseRef-Halyard
// The product's graph, from the product's document, driven block by block.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <vector>

#include "Audio/CAudioVizCollector.h"
#include "Core/CApplication.h"
#include "Core/CError.h"
#include "Core/CProcess.h"
#include "Core/Log.h"
#include "Documents/ProductTags.h"
#include "Documents/Resources.h"
#include "Modules/CAudioGraph.h"
#include "Modules/CModOutput.h"

namespace brt {

using Samples = std::vector<double>;

class GraphFixture : public ::testing::Test, private CLogSink {
protected:
    void SetUp() override {
        setLogSink(this);
        CApplication::start({productTags(), kHalyardResources});
        CObject* plugin = nullptr;
        succeed(CApplication::initRootObject(m_root, ""));
        succeed(m_root->createChild(plugin, "plugin", "plugin", kTemplateRequired));
        succeed(m_root->findObjectChecked(m_collector, "plugin.param-collector"));
        succeed(m_root->findObjectChecked(m_viz, "plugin.viz-collector"));
        m_graph = makeGraph();
        setInput({{0, 0}, {1, 0}}, 48000.0);
        m_collector->env().setActive(true);
        settle();
    }

    // The graph builds itself in the first blocks, and takes in the values of what has come to be.
    void settle() {
        run(std::vector<Samples>(static_cast<std::size_t>(m_channelCount), Samples(4096)));
        m_graph->reset();
    }

    void TearDown() override {
        if (m_graph) {
            m_graph->main().detach();
            m_graph->output().detach();
            EXPECT_EQ(m_graph->pool().heldCount(), 0) << "a buffer is still held";
        }
        m_graph.reset();
        CObject::release(m_root);
        stopProcess();
        setLogSink(nullptr);
        for (const std::string& line : m_log) EXPECT_EQ(line.find("never freed"), std::string::npos) << line;
    }

    std::unique_ptr<CAudioGraph> makeGraph() {
        auto graph = std::make_unique<CAudioGraph>(m_collector->env(), *m_collector, m_viz);
        CAudioProcessDefBase* main = nullptr;
        CAudioProcessDefBase* output = nullptr;
        succeed(m_root->findObjectChecked(main, "shared::audio.modMain"));
        succeed(m_root->findObjectChecked(output, "shared::audio.modOutput"));
        succeed(graph->start(*main, "plugin.modMain", *output, "plugin.modOutput"));
        graph->warmUp();
        return graph;
    }

    struct Channel {
        int number;
        int group;
    };
    void setInput(std::vector<Channel> channels, double sampleRate) {
        std::vector<CAudioChannel> table;
        for (const Channel& channel : channels) {
            table.emplace_back();
            table.back().number = channel.number;
            table.back().group = channel.group;
        }
        m_channelCount = static_cast<int>(channels.size());
        m_graph->setInput(table, sampleRate);
    }

    CAudioParam& param(const char* name) { return m_collector->getParam(name); }
    void set(const char* name, double value, int group = 0) { param(name).setFloat(value, group, this); }

    // Runs the signals through the graph in blocks whose lengths `blocks` gives over and over. `before` runs ahead of
    // each block, with its start.
    std::vector<Samples> run(const std::vector<Samples>& inputs, std::vector<int> blocks = {512},
                             const std::function<void(int)>& before = {}) {
        const int length = static_cast<int>(inputs[0].size());
        std::vector<Samples> outputs(inputs.size(), Samples(inputs[0].size(), -777.0));
        for (int start = 0, turn = 0; start < length; ++turn) {
            const int frames = std::min(blocks[static_cast<std::size_t>(turn) % blocks.size()], length - start);
            if (before) before(start);
            std::vector<const double*> in;
            std::vector<double*> out;
            for (const Samples& signal : inputs) in.push_back(signal.data() + start);
            for (Samples& signal : outputs) out.push_back(signal.data() + start);
            m_graph->process(in.data(), out.data(), static_cast<int>(out.size()), frames);
            start += frames;
        }
        return outputs;
    }

    static Samples sine(int length, double cyclesPerSample, double amplitude) {
        Samples signal(static_cast<std::size_t>(length));
        for (std::size_t i = 0; i < signal.size(); ++i)
            signal[i] = amplitude * std::sin(2.0 * 3.14159265358979323846 * cyclesPerSample * static_cast<double>(i));
        return signal;
    }
    static Samples noise(int length, unsigned seed) {
        std::mt19937 random(seed);
        std::uniform_real_distribution<double> spread(-1.5, 1.5);
        Samples signal(static_cast<std::size_t>(length));
        for (double& sample : signal) sample = spread(random);
        return signal;
    }

    CAudioGraph& graph() { return *m_graph; }
    CAudioParamCollector& collector() { return *m_collector; }
    std::vector<std::string>& log() { return m_log; }

    static void succeed(CError* error) {
        if (error == nullptr) return;
        CString text;
        errorToText(error, text, false);
        FAIL() << text.toUtf8();
    }

    CObject* m_root = nullptr;
    CAudioParamCollector* m_collector = nullptr;
    CAudioVizCollector* m_viz = nullptr;
    std::unique_ptr<CAudioGraph> m_graph;
    int m_channelCount = 2;

private:
    void write(std::string_view text, bool) override { m_log.emplace_back(text); }
    std::vector<std::string> m_log;
};

}  // namespace brt
