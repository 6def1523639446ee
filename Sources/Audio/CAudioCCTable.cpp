// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioCCTable.h"

#include "Audio/CAudioExtParam.h"
#include "Audio/StreamNumbers.h"
#include "Core/CClassInfo.h"
#include "Core/CMemoryReader.h"

namespace brt {
namespace {

constexpr CStringView kKey = "ccmap";

}  // namespace

void CAudioCCTable::describeClass(CClassInfo& info) { CObject::describeClass(info); }

CError* CAudioCCTable::initDone() {
    BRT_TRY(getFullName(), CObject::initDone());
    m_listener.listen(CAppData::local(), kKey);
    reload();
    return nullptr;
}

CAudioExtParam* CAudioCCTable::find(int controller) const noexcept {
    if (controller < 0 || controller >= kControllers) return nullptr;
    const CLock lock(m_lock);
    return m_targets[static_cast<std::size_t>(controller)];
}

void CAudioCCTable::onMapChanged(const CUpdateData*) { reload(); }

// Instance trees do not change once they stand, so names may be looked up on any thread.
void CAudioCCTable::reload() {
    const CLock oneAtATime(m_reloadLock);  // the last one to read is the last one to write
    CByteBuffer bytes;
    CAppData::local().getData(kKey, bytes, appDataTag::kRecord);
    Targets targets{};
    if (!bytes.isEmpty()) {
        CMemoryReader stream(bytes.data(), bytes.size());
        discardError(readMap(stream, targets));  // what came before the damage holds
    }
    const CLock lock(m_lock);
    m_targets = targets;
}

CError* CAudioCCTable::readMap(CInputStream& stream, Targets& targets) const {
    int count = 0;
    constexpr int kLeastEntryBytes = 8;
    BRT_TRY(getFullName(), readCount(stream, count, kControllers, kLeastEntryBytes));
    for (int i = 0; i < count; ++i) {
        std::uint32_t controller = 0;
        CString name;
        BRT_TRY(getFullName(), readU32(stream, controller));
        BRT_TRY(getFullName(), stream.readString(name));
        if (controller < kControllers)
            targets[controller] = name.isEmpty() ? nullptr : dynamic_cast<CAudioExtParam*>(root()->findObject(name));
    }
    return nullptr;
}

}  // namespace brt
