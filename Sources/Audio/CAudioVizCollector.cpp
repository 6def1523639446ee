// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioVizCollector.h"

#include <algorithm>

#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamDef.h"
#include "Audio/StreamNumbers.h"
#include "Core/CClassInfo.h"

namespace brt {
namespace {

// Has the allocator hold that many blocks for records: later the audio thread need not go to the system.
void makeRoom(int recordCount) {
    COwnedArray<CAudioVizDataMeter> records;
    records.reserve(recordCount);
    while (records.count() < recordCount) records.append(new CAudioVizDataMeter);
}

}  // namespace

class CAudioVizCollector::CTaken {
public:
    CTaken() = default;
    CTaken(const CTaken&) = delete;
    CTaken& operator=(const CTaken&) = delete;
    ~CTaken() {
        while (m_oldest != nullptr) delete std::exchange(m_oldest, m_oldest->m_next);
    }

    CError* save(COutputStream& stream) const {
        BRT_TRY("", writeI32(stream, m_count));
        BRT_TRY("", stream.writeString(m_slot->path));
        for (const CAudioVizData* record = m_oldest; record != nullptr; record = record->m_next)
            BRT_TRY(m_slot->path, record->saveTagged(stream));
        return nullptr;
    }

private:
    friend class CAudioVizCollector;

    const VizSlot* m_slot = nullptr;
    CAudioVizData* m_oldest = nullptr;
    int m_count = 0;
};

// Made before the lock is taken, with room for all slots.
class CAudioVizCollector::CTakenList {
public:
    COwnedArray<CTaken> slots;
    int used = 0;
};

void CAudioVizCollector::describeClass(CClassInfo& info) {
    CObject::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::object("env").required().ofClass<CAudioEnv>().help("what the instance's audio side shares with the rest"),
        attr::object("param-collector")
            .required()
            .ofClass<CAudioParamCollector>()
            .help("has the \"-enable\" parameters"),
        attr::text("export-slot-param").help("parameter of the slot for other instances; must be empty"),
        attr::text("export-opt-param1").help("of that slot; must be empty"),
        attr::text("export-opt-param2").help("of that slot; must be empty"),
    };
    info.addAttributes(kAttributes);
}

CAudioVizCollector::CAudioVizCollector() = default;
CAudioVizCollector::~CAudioVizCollector() { finish(); }

CError* CAudioVizCollector::init() {
    BRT_TRY(getFullName(), CObject::init());
    BRT_TRY(getFullName(), findObjectByAttr("env", m_env));
    BRT_TRY(getFullName(), findObjectByAttr("param-collector", m_params));
    BRT_TRY(getFullName(), findObjectChecked(m_enableDef, "shared::audio.param-enable-viz"));
    for (const CStringView name : {"export-slot-param", "export-opt-param1", "export-opt-param2"}) {
        if (getAttrString(name).isEmpty()) continue;
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CAudioVizCollector_init_NoExport Meters can't be exported to other instances: the "
                         "attribute '%1' must be empty, not '%2'.",
                         name, getAttrString(name));
    }
    return nullptr;
}

VizSlot& CAudioVizCollector::getSlot(CStringView processPath) {
    const CRankedLock lock(m_nameSection);
    bool isNew = false;
    std::unique_ptr<VizSlot>& slot = m_slots.findOrInsert(processPath, isNew);
    if (isNew) slot = std::make_unique<VizSlot>(processPath);
    return *slot;
}

void CAudioVizCollector::addListener(VizSlot& slot) {
    CString name(slot.path);
    name += "-enable";
    CAudioParam& enable = m_params->getParam(name);
    if (enable.info() == nullptr) enable.setInfo(m_enableDef->info(), {});
    if (!slot.m_hasRoom.exchange(true)) makeRoom((m_roomCount.fetch_add(1) + 1) * kMostRecords);
    changeListeners(slot, 1, &enable);
}

void CAudioVizCollector::removeListener(VizSlot& slot) { changeListeners(slot, -1, nullptr); }

// `enable`: null if the slot has it already.
void CAudioVizCollector::changeListeners(VizSlot& slot, int delta, CAudioParam* enable) {
    const CSwapLock lock(m_env->section());
    // Written once: the audio thread reads it without the lock.
    if (slot.m_enable == nullptr) slot.m_enable = enable;
    slot.m_pendingDelta += delta;
    if (slot.m_isPending) return;
    slot.m_isPending = true;
    slot.m_nextPending = std::exchange(m_firstPending, &slot);
}

VizSlot* CAudioVizCollector::takePending() noexcept {
    const CSwapLock lock(m_env->section());
    VizSlot* const first = std::exchange(m_firstPending, nullptr);
    for (VizSlot* slot = first; slot != nullptr; slot = slot->m_nextTaken) {
        slot->m_nextTaken = slot->m_nextPending;
        slot->m_takenDelta = std::exchange(slot->m_pendingDelta, 0);
        slot->m_isPending = false;
    }
    return first;
}

void CAudioVizCollector::applyPending(VizSlot* first) {
    for (VizSlot* slot = first; slot != nullptr; slot = slot->m_nextTaken) applyCount(*slot, slot->m_takenDelta);
}

void CAudioVizCollector::applyCount(VizSlot& slot, int delta) {
    const int before = slot.listenerCount;
    slot.listenerCount = std::max(0, before + delta);
    if (before == 0 && delta > 0) {
        enable(slot, 1.0);
    } else if (before > 0 && slot.listenerCount == 0) {
        CTaken dropped;
        {
            const CSwapLock lock(m_recordSection);
            takeRecords(slot, dropped);
        }
        enable(slot, 0.0);
    }
}

void CAudioVizCollector::enable(const VizSlot& slot, double value) {
    CAudioParamUpdate update;
    update.elementCount = 1;
    update.isSetCount = true;
    update.source = this;
    update.format = slot.m_enable->info()->format;
    update.values = &value;
    slot.m_enable->update(update, {});
}

void CAudioVizCollector::post(VizSlot& slot, std::unique_ptr<CAudioVizData> record) noexcept {
    if (slot.listenerCount <= slot.remoteListenerCount) return;
    record->slotIndex = CAudioVizData::kLocalInstance;
    record->m_next = nullptr;
    std::unique_ptr<CAudioVizData> pushedOut;
    const CSwapLock lock(m_recordSection);
    if (!std::exchange(slot.m_isListed, true)) slot.m_nextListed = std::exchange(m_firstListed, &slot);
    if (slot.m_recordCount == kMostRecords) {
        pushedOut.reset(std::exchange(slot.m_oldest, slot.m_oldest->m_next));
    } else {
        ++slot.m_recordCount;
    }
    CAudioVizData* const last = std::exchange(slot.m_newest, record.release());
    (slot.m_oldest == nullptr ? slot.m_oldest : last->m_next) = slot.m_newest;
}

// Under the lock of records.
void CAudioVizCollector::takeRecords(VizSlot& slot, CTaken& taken) noexcept {
    taken.m_slot = &slot;
    taken.m_oldest = std::exchange(slot.m_oldest, nullptr);
    taken.m_count = std::exchange(slot.m_recordCount, 0);
    slot.m_newest = nullptr;
}

void CAudioVizCollector::takeAll(CTakenList& taken) {
    int slotCount = 0;
    {
        const CRankedLock lock(m_nameSection);
        slotCount = m_slots.count();
    }
    taken.slots.reserve(slotCount);
    while (taken.slots.count() < slotCount) taken.slots.append(new CTaken);
    const CSwapLock lock(m_recordSection);
    // A slot that has come since then waits for the next time.
    while (m_firstListed != nullptr && taken.used < slotCount) {
        VizSlot& slot = *std::exchange(m_firstListed, m_firstListed->m_nextListed);
        slot.m_isListed = false;
        takeRecords(slot, taken.slots[taken.used++]);
    }
}

CError* CAudioVizCollector::collect(COutputStream& stream, double framesPerSecond) {
    m_env->requestFrameRate(framesPerSecond);
    // Records that come in between may tell of what lies behind this; whoever reads them keeps them back until then.
    const double position = m_env->blockEndSeconds();
    CTakenList taken;
    takeAll(taken);
    BRT_TRY(getFullName(), writeF64(stream, position));
    for (int i = 0; i < taken.used; ++i)
        if (taken.slots[i].m_count > 0) BRT_TRY(getFullName(), taken.slots[i].save(stream));
    BRT_TRY(getFullName(), writeU32(stream, 0));
    return nullptr;
}

void CAudioVizCollector::finish() {
    CTakenList taken;
    takeAll(taken);
}

}  // namespace brt
