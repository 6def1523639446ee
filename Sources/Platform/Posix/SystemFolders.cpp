// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/SystemFolders.h"

#include <dlfcn.h>
#include <link.h>
#include <pwd.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

#include "Platform/PathText.h"

namespace brt {

namespace {

constinit char* g_modulePath = nullptr;  // from malloc; null if the system didn't tell

// The path as the loader knows it: relative if the host gave a relative one, empty for the executable.
const char* loadersPath() noexcept {
    Dl_info info{};
    link_map* module = nullptr;
    if (dladdr1(&g_modulePath, &info, reinterpret_cast<void**>(&module), RTLD_DL_LINKMAP) == 0) return nullptr;
    return module->l_name;
}

// First of all static initialisers, so that any of them may ask.
[[gnu::constructor(101)]] void recordModulePath() noexcept {
    const char* const path = loadersPath();
    if (path != nullptr) g_modulePath = realpath(*path == 0 ? "/proc/self/exe" : path, nullptr);
}

[[gnu::destructor(101)]] void forgetModulePath() noexcept {
    free(g_modulePath);
    g_modulePath = nullptr;
}

bool isAbsolute(const char* path) noexcept { return path != nullptr && *path == '/'; }

std::string homeFromUserDatabase() {
    std::vector<char> text(1024);
    for (;;) {
        passwd entry{};
        passwd* found = nullptr;
        const int error = getpwuid_r(getuid(), &entry, text.data(), text.size(), &found);
        if (error == ERANGE) {
            text.resize(text.size() * 2);
        } else if (error != EINTR) {
            return found != nullptr && isAbsolute(found->pw_dir) ? found->pw_dir : "";
        }
    }
}

std::u16string withoutLastSlash(std::string path) {
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    return pathFromSystem(path);
}

}  // namespace

std::u16string modulePath() { return g_modulePath != nullptr ? pathFromSystem(g_modulePath) : std::u16string(); }

std::u16string userDataFolder() {
    const char* const configured = getenv("XDG_CONFIG_HOME");
    if (isAbsolute(configured)) return withoutLastSlash(configured);
    const char* const home = getenv("HOME");
    const std::string base = isAbsolute(home) ? home : homeFromUserDatabase();
    return base.empty() ? std::u16string() : withoutLastSlash(base + "/.config");
}

}  // namespace brt
