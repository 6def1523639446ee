// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CAppData.h"

#include <atomic>

#include "Core/CError.h"
#include "Core/CMemoryReader.h"
#include "Core/CProcess.h"
#include "Core/CSystem.h"
#include "Core/CWriteSeqBuffer.h"
#include "Core/Log.h"

namespace brt {
namespace {

constexpr CAppDataPlace kGlobalPlace{"Brontel/", "", "AppDataGlobal_"};
constexpr CAppDataPlace kGroupPlace{"Brontel/Audio Plug-Ins/", "", "AppDataGroup_"};
constexpr CAppDataPlace kLocalPlace{"Brontel/Audio Plug-Ins/Halyard/", "Halyard/", "AppDataLocal_"};

constinit CCriticalSection s_storesLock{500};
constinit std::atomic<CAppDataGlobal*> s_global{nullptr};
constinit std::atomic<CAppDataGroup*> s_group{nullptr};
constinit std::atomic<CAppDataLocal*> s_local{nullptr};

// Under no lock: a listener that still runs is waited for, and may ask for a store.
void deleteStores() {
    delete s_local.exchange(nullptr);
    delete s_group.exchange(nullptr);
    delete s_global.exchange(nullptr);
}

template <class Store>
Store& storeAt(std::atomic<Store*>& place) {
    if (Store* const made = place.load(std::memory_order_acquire)) return *made;
    const CLock lock(s_storesLock);
    registerProcessStop(ProcessStage::stores, &deleteStores);
    Store* store = place.load(std::memory_order_relaxed);
    if (!store) place.store(store = new Store(CSystem::moduleDirectory()), std::memory_order_release);
    return *store;
}

constexpr std::int64_t kNoKeyId = -1;  // nothing is ever told under it
constexpr int kLongestKey = 128;

// A key names a file: it must stay in its folder, on every system, and not be a hidden one.
bool isKey(CStringView text) noexcept {
    if (text.isEmpty() || text.length() > kLongestKey || text[0] == u'.') return false;
    for (int i = 0; i < text.length(); ++i) {
        const char16_t unit = text[i];
        const bool isLetter = (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z');
        const bool isDigit = unit >= u'0' && unit <= u'9';
        if (!isLetter && !isDigit && unit != u'-' && unit != u'_' && unit != u'.') return false;
    }
    return true;
}

}  // namespace

CAppDataGlobal::CAppDataGlobal(CStringView moduleDirectory) : CAppData(kGlobalPlace, moduleDirectory) {}
CAppDataGroup::CAppDataGroup(CStringView moduleDirectory) : CAppData(kGroupPlace, moduleDirectory) {}
CAppDataLocal::CAppDataLocal(CStringView moduleDirectory) : CAppData(kLocalPlace, moduleDirectory) {}

CAppData& CAppData::global() { return storeAt(s_global); }
CAppData& CAppData::group() { return storeAt(s_group); }
CAppData& CAppData::local() { return storeAt(s_local); }

CAppData* CAppData::find(CStringView storageType) {
    if (storageType == "global") return &global();
    if (storageType == "group") return &group();
    if (storageType == "local") return &local();
    return nullptr;
}

std::int64_t CAppData::mapKey(const CUpdateFilter& filter) {
    const CKey* const key = findKey(filter.name);
    return key ? key->id : kNoKeyId;
}

// Null, with a line in the log, if it is no key.
CAppData::CKey* CAppData::findKey(CStringView key) {
    if (!isKey(key)) {
        logLine(
            "No setting can have the key '%s': it is 1 to 128 letters, digits, '-', '_' and '.', which isn't first.",
            key);
        return nullptr;
    }
    const CLock lock(m_lock);
    CKey& known = m_keys.findOrInsert(key);
    if (known.id == 0) known.id = ++m_lastKeyId;
    return &known;
}

// False if nothing is cached; a value of another tag is given as none.
bool CAppData::giveCached(const CKey& key, CByteBuffer& buffer, std::uint32_t tag) {
    const CLock lock(m_lock);
    if (key.isCached && key.tag == tag)
        buffer.assign(key.bytes.data(), key.bytes.size());
    else
        buffer.clear();
    return key.isCached;
}

void CAppData::getData(CStringView key, CByteBuffer& buffer, std::uint32_t tag, EAppDataRead read) {
    buffer.clear();
    CKey* const known = findKey(key);
    if (!known || (read == kCachedRead && giveCached(*known, buffer, tag))) return;

    const CLock fileLock(known->fileLock);
    if (read == kCachedRead && giveCached(*known, buffer, tag)) return;  // another thread was faster
    if (m_files.read(key, buffer, tag)) {
        const CLock lock(m_lock);
        if (known->lastSet == known->lastWritten) {
            known->isCached = true;
            known->tag = tag;
            known->bytes.assign(buffer.data(), buffer.size());
            return;
        }
    }
    // There is no file, or a change that is newer than the file waits to be written.
    giveCached(*known, buffer, tag);
}

bool CAppData::isOutdated(const CKey& key, std::uint64_t change) {
    const CLock lock(m_lock);
    return key.lastSet != change;
}

void CAppData::setData(CStringView key, const CByteBuffer& buffer, const void* sender, std::uint32_t tag) {
    if (buffer.size() > kDefaultBlockLimitBytes) {
        logLine("Setting '%s' is not stored: its %i bytes could not be read back.", key, buffer.size());
        return;
    }
    CKey* const known = findKey(key);
    if (!known || !m_files.prepareToWrite()) return;
    std::uint64_t change = 0;
    {
        const CLock lock(m_lock);
        known->isCached = true;
        known->tag = tag;
        known->bytes.assign(buffer.data(), buffer.size());
        change = ++known->lastSet;
    }
    bool isWritten = false;
    {
        const CLock fileLock(known->fileLock);
        if (isOutdated(*known, change)) return;  // whoever made the later change writes that, and tells
        isWritten = m_files.write(key, buffer, tag);
        const CLock lock(m_lock);
        known->lastWritten = change;
    }
    if (!isWritten) return;
    const CUpdateData data{.sender = sender, .key = known->id};
    notify(&data);
}

void CAppData::getString(CString& value, CStringView key, CStringView defaultValue) {
    CByteBuffer buffer;
    getData(key, buffer, appDataTag::kString);
    if (buffer.isEmpty()) {
        value = defaultValue;
        return;
    }
    CMemoryReader stream(buffer.data(), buffer.size());
    discardError(stream.readString(value));  // what is no text reads as the empty one
}

void CAppData::setString(CStringView key, const CString& value, const void* sender) {
    CWriteSeqBuffer stream(CWriteSeqBuffer::kStringBlockBytes);
    if (CError* const error = stream.writeString(value)) {
        logLine("Setting '%s' is not stored. %s", key, error->message());
        discardError(error);  // told
        return;
    }
    CByteBuffer buffer;
    stream.moveTo(buffer);
    setData(key, buffer, sender, appDataTag::kString);
}

}  // namespace brt
