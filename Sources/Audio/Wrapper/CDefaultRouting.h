// SPDX-License-Identifier: LicenseRef-Halyard
// Fits the routing of channels to the host, as long as no user has touched it: what the inputs are called, which of
// them feed the graph, which group each belongs to, where it goes.
//
// It also keeps the parameter that tells windows how many channels each group has.
//
// Owner: the wrapper. Threads: any but the audio thread. Locks: those of the routing's parameters.
#pragma once

#include <atomic>

#include "Audio/CAudioParamUndo.h"
#include "Audio/CAudioRoutingInfoProvider.h"
#include "Core/CUpdateListener.h"

namespace brt {

// Hears of each change of the routing's parameters, on the thread of the change, once that holds no lock.
class CRoutingWatcher {
public:
    virtual void onRoutingChanged() = 0;

protected:
    ~CRoutingWatcher() = default;
};

class CDefaultRouting final : public CAudioRoutingInfoProvider {
public:
    // [init] `path`: the full name of the main process. Collector and watcher outlive this object.
    void attach(CAudioParamCollector& collector, CStringView path, CRoutingWatcher& watcher);
    // [init] No more listening.
    void detach();

    // What the host calls its input channels, and how many it has.
    void setHostChannels(int channelCount, const CStringList& names);
    // How many it has now; true if the routing was made for another number.
    bool setHostChannelCount(int channelCount) noexcept;
    int hostChannelCount() const noexcept { return m_hostChannelCount.load(std::memory_order_relaxed); }

    // A change of its own, in one step. Unless `isForced`, only once it has been forced.
    void update(bool isForced);
    // Takes the host's names over, whatever the user's are, and fits the rest as above. One step of the history.
    void importChannelLabels(CAudioParamUndo* undo);

    // For registries, as part of what they write.
    void listRoutingParams(CSmallArray<CAudioParam*>& params) override;
    void updateRouting(const CAudioParamChangeContext& context) override;

    // How many channels of the graph each group has.
    void updateChannelCounts();
    // [init] The channels that the graph may have.
    void setInternalChannelCount(int count) noexcept { m_internalChannelCount = count; }

    CAudioParam& inRouting() const noexcept { return *m_inRouting; }
    CAudioParam& grouping() const noexcept { return *m_grouping; }
    CAudioParam& outRouting() const noexcept { return *m_outRouting; }

private:
    class CNewsCall;

    template <class Write>
    void change(CAudioParamUndoData* undo, Write write);
    bool isUntouched() const;
    bool hasDefaultGroupNames() const;
    void writeRouting(const CAudioParamChangeContext& context);
    void writeChannelNames(const CAudioParamChangeContext& context);
    void onRoutingChanged(const CUpdateData* data);

    CAudioParamCollector* m_collector = nullptr;  // not owned
    CRoutingWatcher* m_watcher = nullptr;         // not owned
    CAudioParam* m_inChannelNames = nullptr;
    CAudioParam* m_groupNames = nullptr;
    CAudioParam* m_inRouting = nullptr;
    CAudioParam* m_grouping = nullptr;
    CAudioParam* m_outRouting = nullptr;
    CAudioParam* m_channelCounts = nullptr;
    CStringList m_names;  // under the lock of in-channel-names
    int m_internalChannelCount = 2;
    std::atomic<int> m_hostChannelCount{2};
    std::atomic<int> m_routedChannelCount{0};  // at the last update
    std::atomic<bool> m_wasForced{false};
    COwnedUpdateListener<CDefaultRouting> m_inRoutingListener{*this, &CDefaultRouting::onRoutingChanged};
    COwnedUpdateListener<CDefaultRouting> m_groupingListener{*this, &CDefaultRouting::onRoutingChanged};
};

}  // namespace brt
