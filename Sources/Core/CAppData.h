// SPDX-License-Identifier: LicenseRef-Halyard
// Settings that outlive an instance: values by key, each in a file of its own (CAppDataFiles.h tells where). There are
// three stores, of different reach; all instances of the process share them, and are told of each change:
//
//     CAppDataGlobal    all products of the vendor
//     CAppDataGroup     all its plug-ins
//     CAppDataLocal     this product
//
// A value is bytes with a tag that tells what they are. It is read once and then comes from memory; a change by another
// process is seen by processes that start later, or by a forced read. A key is 1 to 128 of A-Z a-z 0-9 "-" "_" "."
// and doesn't begin with "."; any other reads as absent and isn't stored.
//
// Nothing here reports an error: without a file, a folder or a disk a store falls back to the caller's defaults.
//
// Owner: the process; made at the first use, gone when the process's state stops. Threads: any. Locks: that of the
// store covers memory alone. A file is read and written under a lock of its key, so a slow disk holds up those who want
// this key from the disk and nobody else; but while the folders are looked for and made, once in the life of a store,
// all that want something from its disk wait. `notify` runs under no lock.
#pragma once

#include <cstdint>

#include "Core/CAppDataFiles.h"
#include "Core/CByteBuffer.h"
#include "Core/COrderedMap.h"
#include "Core/CUpdateNotifier.h"
#include "Core/CompressedBlock.h"

namespace brt {

// What a value is.
namespace appDataTag {
inline constexpr std::uint32_t kString = blockTag("dstr");
inline constexpr std::uint32_t kRecord = blockTag("adat");  // of whoever owns the key
inline constexpr std::uint32_t kPresetList = blockTag("alst");
inline constexpr std::uint32_t kPreset = blockTag("aprs");
}  // namespace appDataTag

// Whether a value that is known already is looked for in the files all the same.
enum EAppDataRead : bool { kCachedRead, kForcedRead };

class CAppData : public CUpdateNotifier {
public:
    // [any] The three stores of the process.
    static CAppData& global();
    static CAppData& group();
    static CAppData& local();
    // [any] By the words "global", "group" and "local"; null for any other.
    static CAppData* find(CStringView storageType);

    // [any] The id of the key that the filter names: what a listener is told under. Ids last as long as the store.
    std::int64_t mapKey(const CUpdateFilter& filter) override;

    // [any] The bytes of a value; empty if there is none with that tag. What was read under one tag reads as empty
    // under another. A forced read that finds nothing gives the value that is known.
    void getData(CStringView key, CByteBuffer& buffer, std::uint32_t tag, EAppDataRead read = kCachedRead);

    // [any] Stores a value, and tells listeners under the key, with `sender`, once it is safe on the disk. Where a
    // file can't be written nobody is told, and the value holds as long as the store, or until a forced read finds an
    // older one. Where there is no folder nothing is stored. Of two changes of a key that both wait for the disk, the
    // later alone is written and told.
    // The caller holds no lock that a listener takes.
    void setData(CStringView key, const CByteBuffer& buffer, const void* sender, std::uint32_t tag);

    // [any] A text. `defaultValue` if there is none; the empty text if the value is no text.
    void getString(CString& value, CStringView key, CStringView defaultValue = {});
    // [any] A text of more than 61,440 bytes in UTF-8 isn't stored.
    void setString(CStringView key, const CString& value, const void* sender = nullptr);

protected:
    CAppData(const CAppDataPlace& place, CStringView moduleDirectory) : m_files(place, moduleDirectory) {}

private:
    // What is known of a key. It stays where it is as long as the store.
    struct CKey {
        std::int64_t id = 0;
        CCriticalSection fileLock{500};  // taken before the store's

        // Under the store's lock.
        bool isCached = false;
        std::uint32_t tag = 0;
        CByteBuffer bytes;
        std::uint64_t lastSet = 0;      // number of the last change
        std::uint64_t lastWritten = 0;  // of the last one whose writing has ended, well or badly
    };

    CKey* findKey(CStringView key);
    bool giveCached(const CKey& key, CByteBuffer& buffer, std::uint32_t tag);
    bool isOutdated(const CKey& key, std::uint64_t change);

    CAppDataFiles m_files;
    CCriticalSection m_lock{500};
    COrderedMap<CString, CKey> m_keys BRT_GUARDED_BY(m_lock);
    std::int64_t m_lastKeyId BRT_GUARDED_BY(m_lock) = 0;
};

// Each can be made anew, beside that of the process, with nothing cached and another folder in the program's place.
class CAppDataGlobal final : public CAppData {
public:
    explicit CAppDataGlobal(CStringView moduleDirectory);
};

class CAppDataGroup final : public CAppData {
public:
    explicit CAppDataGroup(CStringView moduleDirectory);
};

class CAppDataLocal final : public CAppData {
public:
    explicit CAppDataLocal(CStringView moduleDirectory);
};

}  // namespace brt
