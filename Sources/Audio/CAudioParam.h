// SPDX-License-Identifier: LicenseRef-Halyard
// A named set of values, one for each channel group and element: whatever a user, a host or a module can touch.
//
// Everybody but the audio thread reads and writes `control`, under the parameter's lock. Each change travels through
// one path, `update`: into `control`, into an undo record if one is open, to the audio side, to listeners, to filters.
// The audio thread writes and reads `audio` alone, with plain loads.
//
//     param->setFloat(0.5, 0, this);
//     param->update(update, context);     // any change, with a batch or an undo record
//
// A parameter comes to be when somebody first names it. Until a definition is attached it has no values: it ignores
// writes and reads as the reader's fallback. Owner: the collector. Threads: any, where no other is told.
#pragma once

#include <atomic>
#include <memory>

#include "Audio/CAudioParamInfo.h"
#include "Audio/CAudioParamQueue.h"
#include "Audio/CAudioParamStorage.h"
#include "Audio/CAudioParamUpdate.h"
#include "Audio/CAudioParamUser.h"
#include "Core/CRankedLock.h"
#include "Core/CUpdateNotifier.h"

namespace brt {

class CAudioParam;
class CAudioParamCollector;
class CAudioParamFilter;
class CAudioParamRegistryBase;

// Keeps what a change makes of a parameter's groups, so that it can be undone. Called under the parameter's lock.
class CAudioParamUndoData {
public:
    // `isAbsent`: the group counts as one without elements, whatever the storage holds.
    virtual void recordBefore(CStringView paramName, int group, const CAudioParamStorage& storage, bool isAbsent) = 0;
    virtual void recordAfter(CStringView paramName, int group, const CAudioParamStorage& storage, bool isAbsent) = 0;

protected:
    ~CAudioParamUndoData() = default;
};

// Goes with every write.
struct CAudioParamChangeContext {
    CAudioParamUndoData* undo = nullptr;  // records the change
    // Collects what goes to the audio side; the caller hands it over (`CAudioParamCollector::handOver`), and holds the
    // locks of all parameters in it until then.
    CAudioParamQueue* batch = nullptr;
    bool isDirect = false;         // [audio] the writer is the audio thread: no queue
    const void* source = nullptr;  // who makes the changes that name no source themselves
};

// What listeners on the collector's notifier get, under the parameter's lock; the key is the parameter.
struct CAudioParamUpdateData : CUpdateData {
    CAudioParamUpdateData(CAudioParam& changed, const CAudioParamUpdate& change, const CAudioParamChangeContext& with);

    CAudioParam& param;
    const CAudioParamUpdate& update;
    const CAudioParamChangeContext& context;
};

// The values of a parameter as presets hold them, read and checked before anything is written.
struct CAudioParamBlock {
    // The values must have the format of `info`; they are limited to its range.
    [[nodiscard]] CError* load(CInputStream& stream, const CAudioParamInfo& info);

    CString definitionName;  // as it was when saved; for messages
    CAudioParamStorage values;
};

class CAudioParam : public CBrtMemAllocator {
public:
    static constexpr int kAllGroups = -1;
    static constexpr int kAllElements = -1;

    CAudioParam(CAudioParamCollector& collector, CStringView name);
    ~CAudioParam();
    CAudioParam(const CAudioParam&) = delete;
    CAudioParam& operator=(const CAudioParam&) = delete;

    const CString& name() const noexcept { return m_name; }
    CAudioParamCollector& collector() const noexcept { return m_collector; }
    // Null until a definition is attached.
    const CAudioParamInfo* info() const noexcept { return m_info.load(std::memory_order_acquire); }

    // Who locks several takes those of rank kParam first, each rank in the order of names: CAudioParamLocks does.
    CRankedSection& section() noexcept BRT_RETURN_CAPABILITY(m_section) { return m_section; }
    // [init] Others write into it: filters, the names of presets.
    void makeDependent() noexcept {
        // A process that comes back names it again, while other threads may hold it.
        if (m_section.rank() != ELockRank::kDependentParam) m_section.setRank(ELockRank::kDependentParam);
    }

    // Reading. The references are good under the parameter's lock.
    const CAudioParamStorage& control() const noexcept { return m_control; }
    const CAudioParamStorage& resetValues() const noexcept { return m_defaults; }
    double getFloat(int group, int element, double fallback);
    CString getString(int group, int element);

    // Writing one element; a group that is too short grows, with defaults. Of another data type: ignored.
    void setFloat(double value, int group, const void* source) { setFloatAt(group, 0, value, source); }
    void setFloatAt(int group, int element, double value, const void* source,
                    const CAudioParamChangeContext& context = {});
    void setString(int group, int element, CStringView text, const void* source,
                   const CAudioParamChangeContext& context = {});
    void setRaw(int group, int element, const CByteBuffer& bytes, const void* source,
                const CAudioParamChangeContext& context = {});

    // The common path of all changes. Ignored: a change of another format, one beyond the limits of groups and
    // elements, one with a number that is none. Its values are not those of this parameter itself.
    void update(const CAudioParamUpdate& requested, const CAudioParamChangeContext& context);

    // Back to what a user's reset means: the values of the default preset where there is one. `group` or `element` may
    // be all. `useFirstDefault`: an element takes the very first of those values.
    void resetToDefault(int group, int element, const CAudioParamChangeContext& context, bool useFirstDefault = false);
    // Back to the definition's values, for a preset that leaves the parameter out. `isLastElement`: those behind go.
    void resetToDefinition(int group, int element, bool isLastElement, const CAudioParamChangeContext& context);

    // As presets hold it: all groups for -1. REQUIRES: info.
    [[nodiscard]] CError* saveToStream(COutputStream& stream, int group);
    // All groups, a group, or one element from a preset; or, `toDefaults`, what a reset means from now on. Group
    // kWholeParam: an element of the defaults. On failure nothing has changed. REQUIRES: info.
    [[nodiscard]] CError* loadFromStream(CInputStream& stream, bool toDefaults, const CAudioParamChangeContext& context,
                                         int group, int element, bool isLastElement);
    // The same from a block that has been read.
    void loadBlock(const CAudioParamBlock& block, bool toDefaults, const CAudioParamChangeContext& context, int group,
                   int element, bool isLastElement);

    // Attaches a definition, which outlives the parameter, and takes its defaults. An equal one changes nothing.
    void setInfo(const CAudioParamInfo& info, const CAudioParamChangeContext& context);

    // Registries whose presets a user's change of this parameter makes the user's own.
    void addRegistry(CAudioParamRegistryBase& registry);
    void removeRegistry(CAudioParamRegistryBase& registry);
    // Tells them. REQUIRES: the parameter's lock.
    void tellRegistries(int group, const CAudioParamChangeContext& context);

    // Filters that run when this parameter changes. REQUIRES: the parameter's lock.
    void addFilter(CAudioParamFilter& filter) { m_filters.append(&filter); }
    void removeFilter(CAudioParamFilter& filter);
    // Appends the parameters that they write, each once. REQUIRES: the parameter's lock.
    void listDependents(CSmallArray<CAudioParam*>& params) const;

    // The audio side.
    // [audio] Its values.
    const CAudioParamStorage& audio() const noexcept { return m_audio; }
    // [audio] Takes a change over, and tells the users whom it concerns.
    void applyToAudio(CAudioParamUpdateCopy& change);

private:
    friend class CAudioParamCollector;

    // An entry that waits in the collector's queue and may take in further changes of its group.
    struct CWaiting {
        CAudioParamQueueEntry* entry = nullptr;
        std::uint64_t generation = 0;  // of the queue that it stands in; another one has been taken since
        int firstElement = 0;
        int endElement = 0;
        bool isSetCount = false;
    };

    bool admit(CAudioParamUpdate& update, const CAudioParamInfo& info) const noexcept;
    void updateWidened(const CAudioParamUpdate& update, const CAudioParamChangeContext& context);
    void writeControl(const CAudioParamUpdate& update, const CAudioParamInfo& info,
                      const CAudioParamChangeContext& context);
    void handOn(const CAudioParamUpdate& update, const CAudioParamChangeContext& context);
    void runFilters(const CAudioParamUpdate& update, const CAudioParamChangeContext& context);
    void setItem(int group, int element, std::unique_ptr<CAudioParamDataItem> item, const void* source,
                 const CAudioParamChangeContext& context);
    CAudioParamUpdate oneElement(int group, int element, const double* values) const noexcept;
    void mapPlace(int& group, int& element) const noexcept;
    void resetGroup(int group, const CAudioParamChangeContext& context);
    void resetGroupToDefinition(int group, const CAudioParamChangeContext& context);
    void loadDefault(const double* values, const CAudioParamData& data, int element, bool isReset,
                     const CAudioParamChangeContext& context);
    void tellUsers(const CAudioParamUpdate& update) noexcept;

    void forgetWaiting() noexcept;
    void prepareForQueue(CAudioParamQueueEntry& entry, bool mayMerge, std::uint64_t generation);
    void enqueue(CAudioParamQueueEntry& entry, CAudioParamQueue& queue, CAudioParamQueue& replaced,
                 std::uint64_t generation) noexcept;

    CAudioParamCollector& m_collector;
    const CString m_name;
    CRankedSection m_section;
    std::atomic<const CAudioParamInfo*> m_info{nullptr};
    CAudioParamStorage m_control;
    CAudioParamStorage m_defaults;
    CSmallArray<CAudioParamFilter*> m_filters;           // not owned
    CAudioParamRegistryBase* m_registry = nullptr;       // follows this parameter; not owned
    CSmallArray<CAudioParamRegistryBase*> m_registries;  // not owned; under the parameter's lock
    CSmallArray<CWaiting> m_waiting;                     // by group; under the parameter's lock
    CAudioParamStorage m_audio;                          // the audio thread's
    CAudioParamUser* m_firstUser = nullptr;              // changed on the audio thread, or while it stands still
};

}  // namespace brt
