// SPDX-License-Identifier: LicenseRef-Halyard
// One instance of the plug-in, whatever format a host knows it in: its object tree, its parameters and presets, its
// running graph. The adapter of a format derives from it and turns the host's calls into these.
//
//     init();  setHostChannels(...);  initConnections();
//     setInputFormat(...);  setOutputFormat(...);  setEnvSampleRate(rate);  activate();
//     process(inputs, outputs, frames);  ...  deactivate();
//
// Owner: the adapter. Threads: as told; the host keeps activation and blocks apart.
#pragma once

#include <atomic>
#include <memory>
#include <optional>

#include "Audio/CAudioExtParamHostBridge.h"
#include "Audio/CAudioExtParamList.h"
#include "Audio/CAudioInterfaceBase.h"
#include "Audio/CAudioInterfaceDataProvider.h"
#include "Audio/CAudioParamRegistry.h"
#include "Audio/CAudioVizCollector.h"
#include "Audio/Wrapper/CBlockRunner.h"
#include "Audio/Wrapper/CMainWindowSize.h"
#include "Audio/Wrapper/CProductInfo.h"

namespace brt {

// What a state holds: all programs, or the current one.
enum class EStateKind : std::uint8_t { kBank, kPreset };

class CAudioWrapper : public CAudioExtParamHostBridge,
                      public CAudioInterfaceDataProvider,
                      private CHostEventHandler,
                      private CRoutingWatcher {
public:
    static constexpr int kStatePrefixBytes = 16;  // zeros ahead of a state, where a host wants them

    CAudioWrapper();
    ~CAudioWrapper() override;
    CAudioWrapper(const CAudioWrapper&) = delete;
    CAudioWrapper& operator=(const CAudioWrapper&) = delete;

    // Start. [init] Makes the tree and the graph. After a failure it can only be destroyed.
    [[nodiscard]] virtual CError* init();
    // [init] The adapter is complete: presets reach the parameters, a first pass goes through the graph, and from now
    // on the host hears of edits.
    void initConnections();

    const CProductInfo& product() const noexcept { return m_product; }
    // The user has asked for two channels in every host.
    bool isForced2ch() const noexcept { return m_isForced2ch; }

    // Blocks.
    // [audio] `inputs` and `outputs` as the formats say; both may be the same memory.
    void process(const void* const* inputs, void* const* outputs, int frameCount);
    // [audio] For the next block.
    void queueEvent(const CHostEvent& event) { m_runner->queueEvent(event); }
    // [host] Neither runs beside a block; each does nothing where that is the state already.
    void activate();
    void deactivate();

    // Layout. What has changed holds from the next block or activation on.
    // [any] On the audio thread `isInBlock` is set: windows are told at a later call that is not.
    void setEnvSampleRate(double sampleRateHz, bool isInBlock = false);
    void setInputFormat(const CHostFormat& format, bool isInBlock = false);
    void setOutputFormat(const CHostFormat& format, bool isInBlock = false);
    // The host renders faster or slower than real time.
    void setHostOffline(bool isOffline);
    // For products that want to know.
    void setHostBpm(double beatsPerMinute);
    void setHostRecording(bool isRecording);
    // Of the whole graph, in samples.
    int latencySamples() const noexcept { return m_env->latencySamples(); }

    // Host parameters, by their numbers. For a number that there isn't: null; nothing happens.
    int extParamCount() const noexcept { return m_extParams->params().count(); }
    CAudioExtParam* extParam(int index) const noexcept;
    // [any] 0 to 1.
    void setExtParam(int index, double value);

    // State. [host] Bytes that `setState` takes back. What can't be read changes nothing.
    [[nodiscard]] CError* getState(CByteBuffer& state, EStateKind kind, bool withPrefix);
    // With a prefix, one without anything behind it is no state: nothing happens, and that is no failure.
    [[nodiscard]] CError* setState(const void* bytes, int size, EStateKind kind, bool withPrefix);

    // Routing. [host] How many channels the host has, and what it calls the inputs; names beyond these are kept.
    void setHostChannels(int channelCount, const CStringList& names);
    // Fits routing that no user has touched to the host's channels. Without `isForced` only once it has been forced.
    void updateDefaultRouting(bool isForced);

    // The window, in pixels.
    void updateWindowSize() { m_windowSize.update(); }
    const CMainWindowSize& windowSize() const noexcept { return m_windowSize; }

    // The parts of the instance. REQUIRES: initialised.
    CObject& root() const noexcept { return *m_root; }
    // What the tree of a window looks the instance up by.
    CObject*& rootPointer() noexcept { return m_rootPointer; }
    CAudioParamRegistry& registry() const noexcept { return *m_registry; }
    CAudioParamCollector& collector() const noexcept { return *m_collector; }
    CAudioVizCollector& vizCollector() const noexcept { return *m_vizCollector; }
    CAudioEnv& env() const noexcept { return *m_env; }
    CAudioGraph& graph() const noexcept { return *m_graph; }

    // For windows.
    int internalChannelCount() const override { return m_internalChannelCount; }
    int groupCount() const override { return m_product.groupCount; }
    int inputChannelCount() const override { return m_runner->layout().input.channelCount; }
    int outputChannelCount() const override { return m_runner->layout().output.channelCount; }
    int sidechainChannelCount() const override { return 0; }
    double sampleRate() const override { return m_env->sampleRate(); }
    bool beginEdit(CAudioParam& param, int element, int group) override;
    void endEdit(CAudioParam& param, int element, int group) override;
    void importChannelLabels() override;

protected:
    // Whether the host may be told; false until the adapter is complete.
    bool isConnected() const noexcept { return m_isConnected.load(std::memory_order_acquire); }
    // [init] For a host that can't have more. REQUIRES: before initConnections.
    void limitChannels(int channelCount) noexcept;
    // [audio] Behind a block whose graph has another latency than the one before.
    virtual void onLatencyChanged();
    // True once for each change; for adapters that tell the host behind a block.
    bool takeLatencyChange() noexcept { return m_isLatencyChanged.exchange(false, std::memory_order_acq_rel); }
    // The host knows the latency that holds now.
    void setLatencyReported();
    // [audio] An event is due.
    void onQueuedEvent0(const CHostEvent& event) override { static_cast<void>(event); }
    void onQueuedEvent1(const CHostEvent& event) override;
    // Has the host resize the window; false if it can't.
    virtual bool hostSizeWindow(int width, int height);

private:
    class CProgramChangeListener;
    struct CRelease {
        void operator()(CObject* object) const { CObject::release(object); }
    };

    // Start.
    [[nodiscard]] CError* makeTree();
    [[nodiscard]] CError* findParts();
    [[nodiscard]] CError* startGraph();
    void findParams();
    void indexExtParams();
    void readSettings();

    CAudioParam& mainParam(CStringView name) const;
    void setLayout(const CHostLayout& layout, bool isInBlock);
    // What blocks leave to others: windows are told, and what the audio thread has taken is made anew.
    void catchUp();
    void onRoutingChanged() override;
    // Null for a value that the host doesn't know.
    const int* findExtIndex(CAudioParam& param, int element, int group) const;
    void runSyncPass();
    void onWindowSizeChanged(const CUpdateData* data);

    std::unique_ptr<CObject, CRelease> m_root;
    CObject* m_rootPointer = nullptr;
    CProductInfo m_product;
    // Parts of the tree.
    CAudioExtParamList* m_extParams = nullptr;
    CAudioParamRegistry* m_registry = nullptr;
    CAudioEnv* m_env = nullptr;
    CAudioInterfaceBase* m_interfaceBase = nullptr;
    CAudioParamCollector* m_collector = nullptr;
    CAudioVizCollector* m_vizCollector = nullptr;

    CDefaultRouting m_routing;
    std::unique_ptr<CAudioGraph> m_graph;
    std::unique_ptr<CBlockRunner> m_runner;
    int m_internalChannelCount = 1;
    bool m_isForced2ch = false;
    std::atomic<bool> m_isConnected{false};
    std::atomic<bool> m_isLayoutUntold{false};
    std::atomic<bool> m_isRateUntold{false};
    std::atomic<bool> m_isLatencyChanged{false};
    std::atomic<bool> m_isLatencyReported{false};

    // What the host does. Unset until it is first told.
    CAudioParam* m_hostOversamplingMode = nullptr;
    CAudioParam* m_hostOffline = nullptr;
    CAudioParam* m_hostLatencyChange = nullptr;
    CAudioParam* m_hostBpmParam = nullptr;  // null where the product doesn't ask
    CAudioParam* m_hostRecParam = nullptr;
    int m_oversamplingLevel = 1;
    std::optional<bool> m_lastOffline;
    std::optional<int> m_lastOversamplingMode;
    std::optional<bool> m_lastRecording;
    double m_hostBpm = -1.0;

    // The host's numbers, by parameter and group << 8 | element.
    COrderedMap<CAudioParam*, COrderedMap<std::uint32_t, int>> m_extIndex;

    CMainWindowSize m_windowSize;
    std::unique_ptr<CProgramChangeListener> m_programListener;
    COwnedUpdateListener<CAudioWrapper> m_windowSizeListener{*this, &CAudioWrapper::onWindowSizeChanged};
};

}  // namespace brt
