// SPDX-License-Identifier: LicenseRef-Halyard
// Start and end of an instance; what the host asks of its parameters and hears of them.
#include "Audio/Wrapper/CAudioWrapper.h"

#include "Audio/CAudioExtParam.h"
#include "Audio/CAudioProcessDefBase.h"
#include "Core/CAppData.h"
#include "Core/CApplication.h"
#include "Core/CError.h"
#include "Core/Log.h"
#include "Core/NumberText.h"
#include "Core/TimeBase.h"
#include "Modules/CModOutput.h"
#include "Platform/ScopedFlushToZero.h"

namespace brt {
namespace {

constexpr CStringView kMainPath = "plugin.modMain";
constexpr CStringView kOutputPath = "plugin.modOutput";

constexpr std::uint32_t extKey(int group, int element) noexcept {
    return static_cast<std::uint32_t>(group) << 8 | static_cast<std::uint32_t>(element);
}

}  // namespace

// Programs have changed, or their names.
class CAudioWrapper::CProgramChangeListener final : public CUpdateListener, public CBrtMemAllocator {
public:
    explicit CProgramChangeListener(CAudioWrapper& wrapper) noexcept : m_wrapper(wrapper) {}
    ~CProgramChangeListener() override { detach(); }

    void update(const CUpdateData*) override { CHostCall::defer(m_wrapper, CHostCall::EKind::kUpdateDisplay); }

private:
    CAudioWrapper& m_wrapper;
};

CAudioWrapper::CAudioWrapper() = default;

CAudioWrapper::~CAudioWrapper() {
    m_programListener.reset();
    m_windowSizeListener.detach();
    m_routing.detach();
    if (m_interfaceBase != nullptr) m_interfaceBase->setDataProvider(nullptr);
    if (m_registry != nullptr) m_registry->setRoutingProvider(nullptr);
    if (m_extParams != nullptr)
        for (CAudioExtParam* const extParam : m_extParams->params()) extParam->setHostBridge(nullptr, 0);
    m_runner.reset();
    m_graph.reset();
}

CError* CAudioWrapper::init() {
    const double startSeconds = secondsSinceOrigin();
    if (CApplication::sharedObject() == nullptr)
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CAudioWrapper_init_NoApp No application object created.");
    BRT_TRY("", makeTree());
    BRT_TRY("", findParts());
    findParams();
    BRT_TRY("", startGraph());
    m_registry->setRoutingProvider(m_product.usesRouting ? &m_routing : nullptr);
    indexExtParams();
    readSettings();
    setHostOffline(false);
    logLine("CAudioWrapper init time: %.4f s @ %.4f s", secondsSinceOrigin() - startSeconds, secondsSinceOrigin());
    return nullptr;
}

CError* CAudioWrapper::makeTree() {
    CObject* root = nullptr;
    CObject* audio = nullptr;
    CObject* plugin = nullptr;
    CObject* project = nullptr;
    BRT_TRY("", CApplication::initRootObject(root, ""));
    m_root.reset(root);
    m_rootPointer = root;
    BRT_TRY("", root->findObjectChecked(audio, "shared::audio"));
    BRT_TRY("", root->createChild(plugin, audio->getAttrString("plugin-tag"), "plugin", kTemplateRequired));
    BRT_TRY("", root->findObjectChecked(project, "shared::project"));
    BRT_TRY("", m_product.read(*project));
    m_internalChannelCount = m_product.internalChannelCount;
    return nullptr;
}

CError* CAudioWrapper::findParts() {
    BRT_TRY("", m_root->findObjectChecked(m_env, "plugin.audio-env"));
    BRT_TRY("", m_root->findObjectChecked(m_collector, "plugin.param-collector"));
    BRT_TRY("", m_root->findObjectChecked(m_vizCollector, "plugin.viz-collector"));
    BRT_TRY("", m_root->findObjectChecked(m_interfaceBase, "plugin.interface-base"));
    BRT_TRY("", m_root->findObjectChecked(m_extParams, "plugin.ext-param-list"));
    BRT_TRY("", m_root->findObjectChecked(m_registry, "plugin.param-registry"));
    return nullptr;
}

CAudioParam& CAudioWrapper::mainParam(CStringView name) const {
    return m_collector->getParam(CString(kMainPath).append(".").append(name));
}

void CAudioWrapper::findParams() {
    m_hostOversamplingMode = &mainParam("host-oversampling-mode");
    m_hostOffline = &mainParam("host-offline");
    m_hostLatencyChange = &mainParam("host-latency-change");
    if (m_product.usesHostBpm) m_hostBpmParam = &mainParam("host-bpm");
    if (m_product.usesHostRecording) m_hostRecParam = &mainParam("host-rec");
    CAudioParam& windowSize = mainParam("main-window-size");
    m_windowSize.attach(windowSize, m_product);
    updateWindowSize();
    if (m_product.usesWindowResizing) m_windowSizeListener.attach(m_collector, CUpdateFilter(&windowSize));
    m_routing.attach(*m_collector, kMainPath, *this);
    m_routing.setInternalChannelCount(m_internalChannelCount);
    m_routing.setHostChannelCount(m_internalChannelCount);
}

CError* CAudioWrapper::startGraph() {
    CAudioProcessDefBase* main = nullptr;
    CAudioProcessDefBase* output = nullptr;
    BRT_TRY("", m_root->findObjectChecked(main, "shared::audio.modMain"));
    BRT_TRY("", m_root->findObjectChecked(output, "shared::audio.modOutput"));
    if (dynamic_cast<CModOutputDef*>(output) == nullptr)
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CAudioWrapper_init_InvalidOutProcessType Output process object "
                         "'shared::audio.modOutput' is not of required 'CModOutput' type.");
    m_graph = std::make_unique<CAudioGraph>(*m_env, *m_collector, m_vizCollector);
    BRT_TRY("", m_graph->start(*main, kMainPath, *output, kOutputPath));
    m_runner = std::make_unique<CBlockRunner>(*m_graph, *m_env, *m_collector, m_routing,
                                              static_cast<CHostEventHandler&>(*this));
    m_runner->setChannelLimit(m_internalChannelCount);
    return nullptr;
}

void CAudioWrapper::indexExtParams() {
    int index = 0;
    for (CAudioExtParam* const extParam : m_extParams->params()) {
        extParam->setHostBridge(this, index);
        m_extIndex.findOrInsert(&extParam->param()).findOrInsert(extKey(extParam->group(), extParam->element())) =
            index++;
    }
}

void CAudioWrapper::readSettings() {
    CString level;
    CString force2ch;
    CAppData::group().getString(level, "oversampling-level", "1");
    CAppData::group().getString(force2ch, "force-2ch", "0");
    std::int64_t number = 0;
    m_oversamplingLevel = parseInteger(level, number) ? static_cast<int>(std::clamp<std::int64_t>(number, 0, 8)) : 1;
    m_isForced2ch = force2ch == "1" || force2ch == "true";
}

void CAudioWrapper::initConnections() {
    m_interfaceBase->setDataProvider(this);
    m_programListener = std::make_unique<CProgramChangeListener>(*this);
    m_programListener->attach(m_registry);
    m_collector->start();
    m_graph->warmUp();
    activate();
    deactivate();
    m_routing.updateChannelCounts();
    m_isConnected.store(true, std::memory_order_release);
}

void CAudioWrapper::limitChannels(int channelCount) noexcept {
    m_internalChannelCount = channelCount;
    m_runner->setChannelLimit(channelCount);
    m_routing.setInternalChannelCount(channelCount);
    m_routing.setHostChannelCount(channelCount);
}

// Host parameters.

CAudioExtParam* CAudioWrapper::extParam(int index) const noexcept {
    return index >= 0 && index < extParamCount() ? m_extParams->params()[index] : nullptr;
}

void CAudioWrapper::setExtParam(int index, double value) {
    CAudioExtParam* const found = extParam(index);
    if (found != nullptr) found->setNormal(value);
}

const int* CAudioWrapper::findExtIndex(CAudioParam& param, int element, int group) const {
    const COrderedMap<std::uint32_t, int>* const places = m_extIndex.find(&param);
    return places != nullptr ? places->find(extKey(group, element)) : nullptr;
}

bool CAudioWrapper::beginEdit(CAudioParam& param, int element, int group) {
    const int* const index = isConnected() ? findExtIndex(param, element, group) : nullptr;
    if (index != nullptr) CHostCall::defer(*this, CHostCall::EKind::kBeginEdit, *index);
    return index != nullptr;
}

void CAudioWrapper::endEdit(CAudioParam& param, int element, int group) {
    const int* const index = isConnected() ? findExtIndex(param, element, group) : nullptr;
    if (index != nullptr) CHostCall::defer(*this, CHostCall::EKind::kEndEdit, *index);
}

// Routing.

void CAudioWrapper::setHostChannels(int channelCount, const CStringList& names) {
    m_routing.setHostChannels(channelCount, names);
}

void CAudioWrapper::updateDefaultRouting(bool isForced) {
    if (m_product.usesRouting) m_routing.update(isForced);
}

void CAudioWrapper::onRoutingChanged() {
    m_routing.updateChannelCounts();
    if (m_graph) m_graph->makeSpares();
}

void CAudioWrapper::importChannelLabels() {
    if (m_product.usesRouting) m_routing.importChannelLabels(m_interfaceBase);
}

// The window.

bool CAudioWrapper::hostSizeWindow(int width, int height) { return static_cast<void>(width + height), false; }

void CAudioWrapper::onWindowSizeChanged(const CUpdateData*) {
    if (m_windowSize.updateSize()) hostSizeWindow(m_windowSize.width(), m_windowSize.height());
}

}  // namespace brt
