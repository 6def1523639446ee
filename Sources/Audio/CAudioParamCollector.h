// SPDX-License-Identifier: LicenseRef-Halyard
// Owns all parameters of an instance, finds them by name, and carries changes from any thread to the audio thread.
//
// Writers append to a queue; at the start of a chunk the audio thread takes the whole queue and hands back what it has
// applied, by exchanging pointers under the environment's lock. What came back is freed by the next writer. While
// nobody takes the queue (the instance is not active, or more than `kMergeAbove` changes wait), a change that touches
// one which waits takes its place, with the values of both, so the queue doesn't grow beyond the parameters that move.
//
// A name may be an alias of another one, so that several modules share one parameter. Owner: the instance's tree.
// Threads: any, where no other is told. Locks: names and users are leaves, each for a few instructions.
#pragma once

#include <atomic>
#include <memory>

#include "Audio/CAudioEnv.h"
#include "Audio/CAudioParam.h"
#include "Audio/CAudioParamRegistryBase.h"
#include "Core/COrderedMap.h"
#include "Core/CRankedLock.h"
#include "Core/CUpdateNotifier.h"

namespace brt {

class CAppData;
class CSharedParam;

class CAudioParamCollector : public CObject, public CUpdateNotifier {
public:
    static constexpr int kMergeAbove = 1024;
    static constexpr int kUsersPerPage = 512;

    static void describeClass(CClassInfo& info);
    CAudioParamCollector();
    ~CAudioParamCollector() override;
    [[nodiscard]] CError* init() override;

    // REQUIRES: initialised.
    CAudioEnv& env() const noexcept { return *m_env; }

    // Names.
    // The parameter of that name, or of the one that it is an alias of; a new one without values if there is none.
    CAudioParam& getParam(CStringView name);
    // The same, but null if there is none.
    CAudioParam* findParam(CStringView name);
    // All parameters, in the order of their names. They live as long as the collector.
    void listParams(CSmallArray<CAudioParam*>& params);
    // From now on `name` means `target`; its own name removes the alias. A chain that would have no end is refused.
    [[nodiscard]] CError* addAlias(CStringView name, CStringView target);
    void removeAlias(CStringView name);
    bool isAliased(CStringView name);

    // Ties a parameter to a value in a store of settings, as long as the collector lives; a second tie of one name and
    // value does nothing.
    void addShared(CStringView name, CAppData& store, CStringView dataName);

    // Registries.
    // [init] Offers all parameters to the registries; from now on each new one at once. Later calls do nothing.
    void start();
    void addRegistry(CAudioParamRegistryBase& registry);
    void removeRegistry(CAudioParamRegistryBase& registry);
    // Null if there is none.
    CAudioParamRegistryBase* findRegistry(CStringView name);

    // Changes on their way.
    // Sends a batch to the audio side in one step, and empties it. REQUIRES: the thread holds the locks of all
    // parameters in it.
    void handOver(CAudioParamQueue& batch);
    // Frees what the audio thread has handed back. Not on the audio thread.
    void freeSpent();
    // [audio] Hands back what is in `queue`, which has been applied, and takes what waits.
    void takeUpdates(CAudioParamQueue& queue) noexcept BRT_REALTIME;
    // [audio] Applies what was taken.
    void applyUpdates(CAudioParamQueue& queue);
    // What a process reads whose definition does not know a parameter.
    const CAudioParamStorage& noValues() const noexcept { return m_noValues; }
    // Changes that wait; for tests and reports.
    int waitingCount() const noexcept { return m_waitingCount.load(std::memory_order_relaxed); }

    // Readers on the audio side. [audio], or while it stands still.
    CAudioParamUser* addUser(CAudioParam& param, std::uint8_t* updateNeeded, std::uint32_t* changedGroups, int group,
                             int element);
    void removeUser(CAudioParamUser* user);

private:
    struct CUserPage : CBrtMemAllocator {
        CAudioParamUser users[kUsersPerPage];
    };

    CStringView resolveAlias(CStringView name) const BRT_REQUIRES(m_mapSection);
    void offer(CAudioParam& param);

    const CAudioParamStorage m_noValues{};
    CAudioEnv* m_env = nullptr;
    bool m_isStarted = false;

    CRankedSection m_mapSection{ELockRank::kLeaf};
    COrderedMap<CString, std::unique_ptr<CAudioParam>> m_params BRT_GUARDED_BY(m_mapSection);
    COrderedMap<CString, CString> m_aliases BRT_GUARDED_BY(m_mapSection);
    COrderedMap<CString, std::unique_ptr<CSharedParam>> m_shared;                     // by parameter and value; [init]
    CSmallArray<CAudioParamRegistryBase*> m_registries BRT_GUARDED_BY(m_mapSection);  // the longest hierarchy first

    // Under the environment's lock.
    CAudioParamQueue m_queue;
    CAudioParamQueue m_spent;
    std::atomic<std::uint64_t> m_generation{1};  // of the queue: grows each time that it is taken
    std::atomic<int> m_waitingCount{0};

    CRankedSection m_userSection{ELockRank::kLeaf};
    COwnedArray<CUserPage> m_userPages BRT_GUARDED_BY(m_userSection);
    CAudioParamUser* m_freeUsers BRT_GUARDED_BY(m_userSection) = nullptr;
};

}  // namespace brt
