// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CSystem.h"

#include "Core/CError.h"
#include "Platform/CLoopAddress.h"
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

CError* CSystem::sendEvent(const CLoopAddress& target, std::uint32_t message, std::int64_t number) {
    const int code = target.post(message, number);
    if (code == 0) return nullptr;
    return makeError(nullptr, __FILE__, __LINE__, "", "@brtstr_CSystem_sendEvent_PostMessage Post message error %1.",
                     code);
}

}  // namespace brt
