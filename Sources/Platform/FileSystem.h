// SPDX-License-Identifier: LicenseRef-Halyard
// Files and folders by their paths. Paths are in the framework's text form (`PathText.h`); a relative one starts at the
// process's working directory. Operations that return an int return the system's error code, 0 for success.
// Threads: any.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace brt {

struct FolderEntry {
    std::u16string name;
    bool isDirectory = false;  // links are followed
};

// [any] Makes every missing folder of the path, step by step, for the user alone (mode 0700). Success if the whole path
// is a directory at the end, whoever made it. Folders made before a failure stay.
[[nodiscard]] int makeDirectory(std::u16string_view path);

// [any] Links are followed. The empty path, which is the working directory, counts as one.
bool isDirectory(std::u16string_view path);

// [any] Everything in the folder but "." and "..", in the order of the names' units. On failure `entries` is unchanged.
[[nodiscard]] int listDirectory(std::u16string_view path, std::vector<FolderEntry>& entries);

// [any] True if the process may write the file, or make files in the folder.
bool isWritable(std::u16string_view path);

// [any] Moves a file over whatever file has the new name, in one step: everybody sees the old one or the new one.
// REQUIRES: both are on the same file system.
[[nodiscard]] int renameFile(std::u16string_view from, std::u16string_view to);

// [any] Removes a file, or the link that the path names.
[[nodiscard]] int removeFile(std::u16string_view path);

// [any] Removes from the folder what `CNativeFile::createTemporaryBeside` has made and a crash has left there: files
// with a name of that form to which nobody has written for so long. What can't be looked at or removed stays.
void removeOldTemporaries(std::u16string_view folder, double ageSeconds);

// [any] The file that writing to `path` would reach or create: where the path names a link, what that leads to, which
// need not exist. On failure `result` is unchanged.
[[nodiscard]] int followLinks(std::u16string_view path, std::u16string& result);

// [any] The absolute path with all links followed, which must exist. On failure `result` is unchanged.
[[nodiscard]] int realPath(std::u16string_view path, std::u16string& result);

}  // namespace brt
