// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/FileSystem.h"

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "Platform/Posix/SystemCalls_p.h"
#include "Platform/Posix/TemporaryName_p.h"
#include "Platform/SystemError.h"

namespace brt {

namespace {

bool isDirectoryAt(int folder, const char* path) noexcept {
    struct stat status {};
    return fstatat(folder, path, &status, 0) == 0 && S_ISDIR(status.st_mode);
}

struct CloseFolder {
    void operator()(DIR* folder) const noexcept { closedir(folder); }
};
using OpenFolder = std::unique_ptr<DIR, CloseFolder>;

OpenFolder openFolder(const char* path) noexcept {
    const int descriptor = retried([&] { return open(*path == 0 ? "." : path, O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
    if (descriptor < 0) return nullptr;
    DIR* const folder = fdopendir(descriptor);
    if (folder == nullptr) close(descriptor);
    return OpenFolder(folder);
}

bool isDirectoryEntry(DIR* folder, const dirent& entry) noexcept {
    // Links, and file systems that don't tell, cost one more question.
    if (entry.d_type != DT_UNKNOWN && entry.d_type != DT_LNK) return entry.d_type == DT_DIR;
    return isDirectoryAt(dirfd(folder), entry.d_name);
}

}  // namespace

int makeDirectory(std::u16string_view path) {
    const CSystemPath whole(path);
    if (const int error = whole.error()) return error;
    if (isDirectory(path)) return 0;

    int error = 0;
    for (std::size_t end = 0; end != std::string::npos && error == 0;) {
        end = whole.bytes().find('/', end + 1);
        const std::string step = whole.bytes().substr(0, end);
        if (isDirectoryAt(AT_FDCWD, step.c_str())) continue;
        if (mkdir(step.c_str(), 0700) != 0 && errno != EEXIST) error = errno;
    }
    if (isDirectory(path)) return 0;
    return error != 0 ? error : ENOTDIR;
}

bool isDirectory(std::u16string_view path) {
    const CSystemPath systemPath(path);
    return path.empty() || (systemPath.error() == 0 && isDirectoryAt(AT_FDCWD, systemPath));
}

int listDirectory(std::u16string_view path, std::vector<FolderEntry>& entries) {
    const CSystemPath systemPath(path);
    if (const int error = systemPath.error()) return error;
    const OpenFolder folder = openFolder(systemPath);
    if (folder == nullptr) return errno;

    std::vector<FolderEntry> found;
    for (;;) {
        errno = 0;
        const dirent* const entry = readdir(folder.get());
        if (entry == nullptr) break;
        if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0) continue;
        found.push_back({pathFromSystem(entry->d_name), isDirectoryEntry(folder.get(), *entry)});
    }
    if (errno != 0) return errno;
    std::sort(found.begin(), found.end(), [](const FolderEntry& a, const FolderEntry& b) { return a.name < b.name; });
    entries.swap(found);
    return 0;
}

bool isWritable(std::u16string_view path) {
    const CSystemPath systemPath(path);
    if (systemPath.error() != 0) return false;
    const char* const name = path.empty() ? "." : static_cast<const char*>(systemPath);
    const int rights = isDirectory(path) ? W_OK | X_OK : W_OK;
    return faccessat(AT_FDCWD, name, rights, AT_EACCESS) == 0;
}

int renameFile(std::u16string_view from, std::u16string_view to) {
    const CSystemPath systemFrom(from);
    const CSystemPath systemTo(to);
    if (systemFrom.error() != 0 || systemTo.error() != 0) return EINVAL;
    return rename(systemFrom, systemTo) == 0 ? 0 : errno;
}

int removeFile(std::u16string_view path) {
    const CSystemPath systemPath(path);
    if (const int error = systemPath.error()) return error;
    return unlink(systemPath) == 0 ? 0 : errno;
}

void removeOldTemporaries(std::u16string_view folder, double ageSeconds) {
    const CSystemPath systemPath(folder);
    const OpenFolder opened = systemPath.error() == 0 ? openFolder(systemPath) : nullptr;
    if (opened == nullptr) return;
    const int place = dirfd(opened.get());
    while (const dirent* const entry = readdir(opened.get())) {
        if (!isTemporaryName(entry->d_name)) continue;
        struct stat status {};
        if (fstatat(place, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISREG(status.st_mode)) continue;
        if (difftime(time(nullptr), status.st_mtime) > ageSeconds) unlinkat(place, entry->d_name, 0);
    }
}

int followLinks(std::u16string_view path, std::u16string& result) {
    const CSystemPath start(path);
    if (const int error = start.error()) return error;
    constexpr int kMostLinks = 40;  // as the system's own
    std::string file = start.bytes();
    for (int links = 0; links <= kMostLinks; ++links) {
        char target[PATH_MAX];
        const ssize_t length = readlink(file.c_str(), target, sizeof target);
        if (length < 0 && errno != EINVAL && errno != ENOENT) return errno;
        if (length < 0) {  // no link, or nothing yet
            result = pathFromSystem(file);
            return 0;
        }
        // A relative link starts at the folder that it lies in.
        if (target[0] == '/')
            file.clear();
        else
            file.erase(file.rfind('/') + 1);
        file.append(target, static_cast<std::size_t>(length));
    }
    return ELOOP;
}

int realPath(std::u16string_view path, std::u16string& result) {
    const CSystemPath systemPath(path);
    if (const int error = systemPath.error()) return error;
    char* const resolved = realpath(systemPath, nullptr);
    if (resolved == nullptr) return errno;
    result = pathFromSystem(resolved);
    free(resolved);
    return 0;
}

}  // namespace brt
