// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CAppDataFiles.h"

#include "Core/CApplication.h"
#include "Core/CAtomicFileWriter.h"
#include "Core/CByteBuffer.h"
#include "Core/CError.h"
#include "Core/CFileReader.h"
#include "Core/CMemoryReader.h"
#include "Core/CSystem.h"
#include "Core/Log.h"
#include "Platform/FileSystem.h"

namespace brt {
namespace {

constexpr double kOldTemporarySeconds = 24.0 * 60 * 60;  // no write takes that long: whoever made the file has crashed

CString joined(CStringView a, CStringView b) {
    CString both = a;
    both += b;
    return both;
}

// Whether files can be made in the folder, or below the nearest one above it that exists.
bool canWriteBelow(const CString& folder) {
    std::u16string path = folder.toPath();
    while (!isDirectory(path)) path.erase(path.find_last_of(u'/') == path.npos ? 0 : path.find_last_of(u'/'));
    return isWritable(path);
}

bool readFile(const CString& path, CByteBuffer& buffer, std::uint32_t tag) {
    CFileReader file;
    if (discardError(file.open(path, false, FileKind::regular))) return false;  // as a rule there is none
    return !discardError(file.readCompressedData(buffer, tag));                 // what is damaged counts as absent
}

CError* replaceFile(const CString& folder, CStringView key, const CByteBuffer& buffer, std::uint32_t tag) {
    const CString path = joined(folder, key);
    CAtomicFileWriter file;
    if (CError* const error = file.open(path)) {
        // Somebody may have removed the folder since it was made.
        if (CSystem::isDirectory(folder) || !CSystem::makeDirectory(folder)) return error;
        discardError(error);  // tried again
        BRT_TRY("", file.open(path));
    }
    BRT_TRY("", file.writeCompressedData(buffer, tag));
    BRT_TRY("", file.commit());
    return nullptr;
}

}  // namespace

void CAppDataFiles::findFolders() {
    if (m_isInitialised) return;
    m_isInitialised = true;
    CString portable;
    if (!m_moduleDirectory.isEmpty()) {
        if (!m_place.sidePath.isEmpty()) m_sideFolder = joined(m_moduleDirectory, m_place.sidePath);
        if (!CSystem::isDirectory(m_sideFolder)) m_sideFolder.clear();
        const int slash = m_place.relativePath.find(u'/');
        portable = joined(joined(m_moduleDirectory, m_place.relativePath.slice(0, slash)), " Settings");
        if (CSystem::isDirectory(portable))
            portable += m_place.relativePath.slice(slash);
        else
            portable.clear();
    }
    CString user = CSystem::applicationDataFolder();
    if (!user.isEmpty()) user += m_place.relativePath;

    const bool isPortable = !portable.isEmpty() && (user.isEmpty() || canWriteBelow(portable));
    m_primaryFolder = isPortable ? portable : user;
    m_fallbackFolder = isPortable ? user : portable;
}

void CAppDataFiles::listFiles(CStringList& paths, CStringView key) {
    const CLock lock(m_lock);
    findFolders();
    for (const CString* const folder : {&m_primaryFolder, &m_fallbackFolder, &m_sideFolder})
        if (!folder->isEmpty()) paths.append(joined(*folder, key).view());
}

bool CAppDataFiles::read(CStringView key, CByteBuffer& buffer, std::uint32_t tag) {
    CStringList paths;
    listFiles(paths, key);
    for (const CString* const path : paths)
        if (readFile(*path, buffer, tag)) return true;
    return readResource(key, buffer, tag);
}

// Not through a reader that would take a name without a resource for that of a file: it would be one in the working
// directory of the host.
bool CAppDataFiles::readResource(CStringView key, CByteBuffer& buffer, std::uint32_t tag) const {
    const CResource* const resource = CApplication::resources().find(joined(m_place.resourcePrefix, key));
    buffer.clear();
    if (!resource) return false;
    CMemoryReaderStatic stream(resource->bytes, resource->size);
    return !discardError(stream.readCompressedData(buffer, tag));  // of another tag: counts as absent
}

CString CAppDataFiles::primaryFolder() {
    const CLock lock(m_lock);
    return m_primaryFolder;
}

bool CAppDataFiles::prepareToWrite() {
    const CLock lock(m_lock);
    findFolders();
    if (m_isFolderChecked) return m_isFolderValid;
    m_isFolderChecked = true;
    if (m_primaryFolder.isEmpty()) {
        tellOnce(makeError(nullptr, __FILE__, __LINE__, "",
                           "@brtstr_CAppData_setData_NoFolder Settings of '%1' are not stored: there is no folder for "
                           "them. Set XDG_CONFIG_HOME or HOME to one that can be written.",
                           m_place.relativePath));
        return false;
    }
    const int error = makeDirectory(m_primaryFolder.toPath());
    m_isFolderValid = error == 0;
    if (m_isFolderValid)
        removeOldTemporaries(m_primaryFolder.toPath(), kOldTemporarySeconds);
    else
        tellOnce(makeError(nullptr, __FILE__, __LINE__, "",
                           "@brtstr_CAppData_setData_FolderError Settings are not stored: unable to make folder '%1' "
                           "(error %2).",
                           m_primaryFolder, error));
    return m_isFolderValid;
}

bool CAppDataFiles::write(CStringView key, const CByteBuffer& buffer, std::uint32_t tag) {
    CError* const error = replaceFile(primaryFolder(), key, buffer, tag);
    if (!error) return true;
    tellOnce(makeError(error, __FILE__, __LINE__, "", ""));
    return false;
}

void CAppDataFiles::tellOnce(CError* error) {
    if (!m_isFailureTold.exchange(true)) logLine("%s", error->message());
    discardError(error);  // nobody waits for it: settings work without their files
}

}  // namespace brt
