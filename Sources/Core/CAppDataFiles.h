// SPDX-License-Identifier: LicenseRef-Halyard
// The files of one store of settings: one file a key, each one compressed block, in the first of these that has it:
//
//     primary    where everything is written: "Brontel Settings/" beside the program's file if there is such a folder,
//                so that a set-up can be carried around with the program; else the user's own folder
//     fallback   the other one of these two
//     side       beside the program's file, for settings that come with it
//     resource   what the program itself brings along
//
// A portable folder that can't be written changes places with the user's. A file that can't be opened, is damaged, or
// holds something else than what is asked for, is as good as none. A file is replaced as a whole: readers, also in
// other processes, see the value before or the one after. Nothing here reports an error: what can't be written is told
// to the log, once.
//
// Owner: the store. Threads: any, also several at once; of those that write one key, one at a time. Folders are looked
// for at the first access.
#pragma once

#include <atomic>
#include <cstdint>

#include "Core/CString.h"
#include "Core/CStringList.h"
#include "Platform/CCriticalSection.h"

namespace brt {

class CByteBuffer;
class CError;

// Where a store keeps its files. Literals.
struct CAppDataPlace {
    CStringView relativePath;    // in the user's folder; ends in "/"
    CStringView sidePath;        // beside the program's file; ends in "/", or empty
    CStringView resourcePrefix;  // stands before the key
};

class CAppDataFiles {
public:
    // `moduleDirectory`: where the program's file lies, with "/" at the end; empty if unknown.
    CAppDataFiles(const CAppDataPlace& place, CStringView moduleDirectory)
        : m_place(place), m_moduleDirectory(moduleDirectory) {}

    // [any] False, with an empty buffer, if no source has a value with that tag.
    // REQUIRES: the application has started; its resources are asked too.
    bool read(CStringView key, CByteBuffer& buffer, std::uint32_t tag);

    // [any] Makes the folder, once in the life of the store. False if there is none to write to.
    bool prepareToWrite();

    // [any] True if the value has reached the storage. REQUIRES: `prepareToWrite` has given true.
    bool write(CStringView key, const CByteBuffer& buffer, std::uint32_t tag);

private:
    void findFolders() BRT_REQUIRES(m_lock);
    void listFiles(CStringList& paths, CStringView key);
    bool readResource(CStringView key, CByteBuffer& buffer, std::uint32_t tag) const;
    CString primaryFolder();
    void tellOnce(CError* error);

    const CAppDataPlace m_place;
    const CString m_moduleDirectory;
    CCriticalSection m_lock{500};
    // Full paths with "/" at the end; empty where there is none.
    CString m_primaryFolder BRT_GUARDED_BY(m_lock);
    CString m_fallbackFolder BRT_GUARDED_BY(m_lock);
    CString m_sideFolder BRT_GUARDED_BY(m_lock);
    bool m_isInitialised BRT_GUARDED_BY(m_lock) = false;    // the folders are known
    bool m_isFolderChecked BRT_GUARDED_BY(m_lock) = false;  // the primary one has been made, or can't be
    bool m_isFolderValid BRT_GUARDED_BY(m_lock) = false;
    std::atomic<bool> m_isFailureTold{false};
};

}  // namespace brt
