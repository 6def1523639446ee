// SPDX-License-Identifier: LicenseRef-Halyard
// The interface of an audio instance: besides parameters it tells windows how many channels there are and at what rate
// they run, passes on what displays ask for, and tells the host of edits.
//
// Without a provider it answers for one channel at 44,100 Hz. Owner and threads: as CParamInterfaceBase.
#pragma once

#include <atomic>

#include "Audio/CParamInterfaceBase.h"

namespace brt {

class CAudioInterfaceDataProvider;
class CAudioVizCollector;

class CAudioInterfaceBase final : public CParamInterfaceBase {
public:
    static void describeClass(CClassInfo& info);
    CAudioInterfaceBase();
    ~CAudioInterfaceBase() override;

    [[nodiscard]] CError* init() override;
    void releaseLinks() override;
    void onClientGone(int clientId) override;

    // [init] Not owned; null: none from now on.
    void setDataProvider(CAudioInterfaceDataProvider* provider);

    // [any] To one client, or to kAllClients.
    void sendStartViz() { sendWord(toClient::kStartViz, EInstanceState::kVizStarted); }
    void sendStopViz() { sendWord(toClient::kStopViz, EInstanceState::kVizStopped); }
    void sendClearClient() { sendWord(toClient::kClearClient, EInstanceState::kVizCleared); }
    void sendInternalChannelCount(int clientId = kAllClients);
    void sendGroupCount(int clientId = kAllClients);
    void sendIoChannelCounts(int clientId = kAllClients);
    void sendSampleRate(int clientId = kAllClients);
    void sendExportSlotNames(int clientId = kAllClients);

private:
    bool beginEdit(CAudioParam& param, int element, int group) override;
    void endEdit(CAudioParam& param, int element, int group) override;

    struct CVizListener;
    class CExportSlotNameListener;

    CError* onListenViz();
    CError* onUnlistenViz();
    CError* onRequestVizData();
    CError* onRequestExportSlotNames();
    CError* onRequestInternalChannelCount();
    CError* onRequestGroupCount();
    CError* onRequestIoChannelCounts();
    CError* onRequestSampleRate();
    CError* onImportChannelLabels();

    using CSend = void (CAudioInterfaceBase::*)(int clientId);
    CError* answer(CSend sendAnswer);
    void sendWord(CStringView name, EInstanceState state);
    void removeVizListener(const CVizListener& listener);
    CAudioInterfaceDataProvider* provider() const noexcept { return m_provider.load(std::memory_order_acquire); }

    std::atomic<CAudioInterfaceDataProvider*> m_provider{nullptr};  // not owned
    CAudioVizCollector* m_vizCollector = nullptr;                   // not owned
    // Under the lock of messages.
    COrderedMap<ParamHandle, std::unique_ptr<CVizListener>> m_vizListeners;
    std::unique_ptr<CExportSlotNameListener> m_exportSlotNames;
};

}  // namespace brt
