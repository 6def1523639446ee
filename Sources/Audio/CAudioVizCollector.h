// SPDX-License-Identifier: LicenseRef-Halyard
// Carries what modules measure from the audio thread to displays, and tells the modules whether anybody looks.
//
// Modules post records to the slot of their process's path; a window's timer collects all that has come since the last
// time. Listeners are counted on the audio thread, at the beginning of a block. The first one of a slot sets the
// parameter "<path>-enable" to 1 and the last one to 0, which is how a process that nobody looks at leaves the graph.
//
//     audio thread:   first = takePending();  ...  applyPending(first);  ...  post(slot, record);
//     windows:        addListener(slot);  collect(stream, fps);  removeListener(slot);
//
// Records lie in lists that run through themselves, so that posting moves and grows nothing. Owner: the instance's
// tree. Threads: any, where no other is told. Locks: that of names and that of records are leaves; under the latter,
// and under the environment's, only pointers move.
#pragma once

#include <atomic>
#include <memory>

#include "Audio/CAudioEnv.h"
#include "Audio/CAudioVizData.h"
#include "Core/COrderedMap.h"
#include "Core/CRankedLock.h"
#include "Core/CUpdateNotifier.h"

namespace brt {

class CAudioParam;
class CAudioParamCollector;
class CAudioParamDef;

// Where the modules of one process post. Lives as long as the collector.
struct VizSlot : CBrtMemAllocator {
    explicit VizSlot(CStringView processPath) : path(processPath) {}

    const CString path;
    // [audio]
    int listenerCount = 0;
    int remoteListenerCount = 0;  // of those, in other instances

private:
    friend class CAudioVizCollector;

    std::atomic<bool> m_hasRoom{false};
    // Under the environment's lock.
    CAudioParam* m_enable = nullptr;  // null until somebody has listened, then the same for ever
    VizSlot* m_nextPending = nullptr;
    int m_pendingDelta = 0;
    bool m_isPending = false;
    // [audio] From `takePending` to `applyPending`.
    VizSlot* m_nextTaken = nullptr;
    int m_takenDelta = 0;
    // Under the lock of records.
    CAudioVizData* m_oldest = nullptr;
    CAudioVizData* m_newest = nullptr;
    int m_recordCount = 0;
    bool m_isListed = false;
    VizSlot* m_nextListed = nullptr;
};

class CAudioVizCollector : public CObject, public CUpdateNotifier {
public:
    static constexpr int kMostRecords = 1024;  // of a slot; the oldest go

    static void describeClass(CClassInfo& info);
    CAudioVizCollector();
    ~CAudioVizCollector() override;
    [[nodiscard]] CError* init() override;

    // The same one at every call.
    VizSlot& getSlot(CStringView processPath);

    // Listeners. They count from the next block on. Not on the audio thread: memory for records is made ready here.
    void addListener(VizSlot& slot);
    void removeListener(VizSlot& slot);
    // [audio] The slots whose listeners have changed; null if there are none.
    VizSlot* takePending() noexcept BRT_REALTIME;
    // [audio] Counts them, and switches processes on and off; CAudioEnv.h tells when. A first listener has its first
    // record at the end of a frame that begins with the next block.
    void applyPending(VizSlot* first);

    // [audio] Takes the record over; without listeners it is dropped.
    void post(VizSlot& slot, std::unique_ptr<CAudioVizData> record) noexcept;

    // Writes where the audio thread has got to and all records that have come, and takes the rate at which the caller
    // will ask for more. What has been taken goes, also if writing fails. Not on the audio thread.
    [[nodiscard]] CError* collect(COutputStream& stream, double framesPerSecond);
    // Drops all records. Not on the audio thread.
    void finish();

private:
    // The records of a slot on their way out; deleted with it.
    class CTaken;
    class CTakenList;

    void changeListeners(VizSlot& slot, int delta, CAudioParam* enable);
    void applyCount(VizSlot& slot, int delta);
    void enable(const VizSlot& slot, double value);
    static void takeRecords(VizSlot& slot, CTaken& taken) noexcept;
    void takeAll(CTakenList& taken);

    CAudioEnv* m_env = nullptr;
    CAudioParamCollector* m_params = nullptr;
    CAudioParamDef* m_enableDef = nullptr;

    CRankedSection m_nameSection{ELockRank::kLeaf};
    COrderedMap<CString, std::unique_ptr<VizSlot>> m_slots BRT_GUARDED_BY(m_nameSection);

    std::atomic<int> m_roomCount{0};  // slots that room was made for

    VizSlot* m_firstPending = nullptr;  // under the environment's lock

    CPriorityLock m_recordSection;
    VizSlot* m_firstListed BRT_GUARDED_BY(m_recordSection) = nullptr;  // slots with records, the latest first
};

}  // namespace brt
