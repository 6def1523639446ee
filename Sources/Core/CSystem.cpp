// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CSystem.h"

#include "Platform/FileSystem.h"
#include "Platform/SystemFolders.h"

namespace brt {

CString CSystem::modulePath() { return CString::fromPath(brt::modulePath()); }

CString CSystem::moduleDirectory() {
    const CString path = modulePath();
    return CString(path.slice(0, path.findLast(u'/') + 1));
}

CString CSystem::applicationDataFolder() {
    CString folder = CString::fromPath(userDataFolder());
    if (folder.isEmpty() || !makeDirectory(folder)) return {};
    folder.append(u'/');
    return folder;
}

bool CSystem::makeDirectory(const CString& path) { return brt::makeDirectory(path.toPath()) == 0; }

bool CSystem::isDirectory(const CString& path) { return brt::isDirectory(path.toPath()); }

}  // namespace brt
