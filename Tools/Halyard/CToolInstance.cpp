// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/CToolInstance.h"

#include <algorithm>
#include <array>

#include "Audio/CAudioParamRegistry.h"
#include "Audio/CAudioPreset.h"
#include "Audio/CAudioProcessDefBase.h"
#include "Audio/CAudioVizCollector.h"
#include "Core/CApplication.h"
#include "Core/CError.h"
#include "Core/CMemoryReader.h"
#include "Core/CWriteSeqBuffer.h"
#include "Documents/Product.h"
#include "Modules/CModOutput.h"
#include "Tools/Halyard/ToolError.h"

namespace brt {
namespace {

void succeed(CError* error) {
    if (error == nullptr) return;
    const std::string message = error->message().toUtf8();
    discardError(error);  // told by the exception
    throw CToolError("the plug-in can't be started: " + message);
}

}  // namespace

void startApplication() {
    if (!startProduct()) throw CToolError("the shared document of this program can't be loaded; see above");
}

CToolInstance::CToolInstance() {
    startApplication();
    CObject* root = nullptr;
    CObject* plugin = nullptr;
    CAudioProcessDefBase* main = nullptr;
    CAudioProcessDefBase* output = nullptr;
    succeed(CApplication::initRootObject(root, ""));
    m_root.reset(root);
    succeed(root->createChild(plugin, "plugin", "plugin", kTemplateRequired));
    succeed(root->findObjectChecked(m_collector, "plugin.param-collector"));
    succeed(root->findObjectChecked(m_hostParams, "plugin.ext-param-list"));
    succeed(root->findObjectChecked(m_registry, "plugin.param-registry"));
    succeed(root->findObjectChecked(m_viz, "plugin.viz-collector"));
    succeed(root->findObjectChecked(main, "shared::audio.modMain"));
    succeed(root->findObjectChecked(output, "shared::audio.modOutput"));
    m_graph = std::make_unique<CAudioGraph>(m_collector->env(), *m_collector, m_viz);
    succeed(m_graph->start(*main, "plugin.modMain", *output, "plugin.modOutput"));
    m_collector->start();
    m_graph->warmUp();
    m_collector->env().setActive(true);
}

CToolInstance::~CToolInstance() = default;

void CToolInstance::set(CStringView name, double value) { m_collector->getParam(name).setFloat(value, 0, this); }

void CToolInstance::activate(const CAudioPreset& preset) {
    CWriteSeqBuffer chain(CWriteSeqBuffer::kStateBlockBytes);
    CByteBuffer bytes;
    CError* error = preset.save(chain);
    chain.moveTo(bytes);
    CMemoryReader stream(bytes.data(), bytes.size());
    if (error == nullptr) error = m_registry->activatePreset(stream, false, CAudioParam::kAllGroups);
    if (error == nullptr) return;
    const std::string message = error->message().toUtf8();
    discardError(error);  // told by the exception
    throw CToolError("preset " + brt::quoted(preset.name().toUtf8()) + " can't be used: " + message);
}

void CToolInstance::watch(CStringView path) { m_viz->addListener(m_viz->getSlot(path)); }
void CToolInstance::unwatch(CStringView path) { m_viz->removeListener(m_viz->getSlot(path)); }

void CToolInstance::setLayout(int channelCount, double sampleRate, int groupSize) {
    m_channelCount = channelCount;
    m_sampleRate = sampleRate;
    std::array<CAudioChannel, kAudioChannelLimit> table{};
    for (int i = 0; i < channelCount; ++i) {
        table[static_cast<std::size_t>(i)].number = i;
        table[static_cast<std::size_t>(i)].group = i / groupSize;
    }
    m_graph->setInput({table.data(), static_cast<std::size_t>(channelCount)}, sampleRate);
    settle();
    m_graph->makeSpares();
}

void CToolInstance::settle() {
    const std::array<double, kAudioBlockLimit> silence{};
    std::array<double, kAudioBlockLimit> ignored{};
    std::array<const double*, kAudioChannelLimit> inputs;
    std::array<double*, kAudioChannelLimit> outputs;
    inputs.fill(silence.data());
    outputs.fill(ignored.data());
    // A fade, the latency that it may wait for, and the blocks in which the graph builds itself.
    constexpr double kFadeSeconds = 0.02;
    constexpr int kLongestLatencySamples = 2048;
    const int blocks = (kLongestLatencySamples + static_cast<int>(kFadeSeconds * m_sampleRate)) / kAudioBlockLimit + 4;
    for (int i = 0; i < blocks; ++i) m_graph->process(inputs.data(), outputs.data(), m_channelCount, kAudioBlockLimit);
    m_graph->reset();
}

void CToolInstance::process(const double* const* inputs, double* const* outputs, int frameCount) {
    std::array<const double*, kAudioChannelLimit> in;
    std::array<double*, kAudioChannelLimit> out;
    for (int start = 0; start < frameCount; start += kAudioBlockLimit) {
        for (int i = 0; i < m_channelCount; ++i) {
            in[static_cast<std::size_t>(i)] = inputs[i] + start;
            out[static_cast<std::size_t>(i)] = outputs[i] + start;
        }
        m_graph->process(in.data(), out.data(), m_channelCount, std::min(kAudioBlockLimit, frameCount - start));
    }
}

}  // namespace brt
