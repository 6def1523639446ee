// SPDX-License-Identifier: LicenseRef-Halyard
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <stdio.h>
#include <unistd.h>

#include <filesystem>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

const fs::path kModule = LOADED_MODULE;

class Module {
public:
    explicit Module(const std::string& path) : m_handle(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
        EXPECT_NE(m_handle, nullptr) << dlerror();
    }
    ~Module() { EXPECT_EQ(dlclose(m_handle), 0) << dlerror(); }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    // The path that the module gives as its own.
    std::string exercise() const {
        char path[4096] = {};
        const auto function = reinterpret_cast<int (*)(char*, std::size_t)>(dlsym(m_handle, "exerciseModule"));
        if (function == nullptr) return "no function";
        EXPECT_EQ(function(path, sizeof path), 5);
        return path;
    }

private:
    void* m_handle;
};

bool isLoaded() {
    void* const handle = dlopen(kModule.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr) dlclose(handle);
    return handle != nullptr;
}

auto threadsOfThisProcess() {
    return std::distance(fs::directory_iterator("/proc/self/task"), fs::directory_iterator());
}

// A thread that was joined stays in the system's list for a moment.
bool threadsBecome(auto expected) {
    for (int i = 0; i < 1000 && threadsOfThisProcess() != expected; ++i) usleep(1000);
    return threadsOfThisProcess() == expected;
}

TEST(Loading, leavesNothingBehindHoweverOften) {
    const auto threads = threadsOfThisProcess();
    for (int i = 0; i < 300; ++i) {
        ASSERT_FALSE(isLoaded()) << i;
        const Module module(kModule);
        EXPECT_EQ(threadsOfThisProcess(), threads) << "a thread was started by the load";
        EXPECT_EQ(module.exercise(), kModule);
        ASSERT_TRUE(threadsBecome(threads));
    }
    EXPECT_FALSE(isLoaded());
}

// Plug-ins come and go in any order; the room that the loader keeps for their thread-local data must not run out.
TEST(Loading, mayOverlapWithOtherModules) {
    const fs::path other = fs::temp_directory_path() / ("halyard-other-" + std::to_string(getpid()) + ".so");
    fs::copy_file(kModule, other);
    auto last = std::make_unique<Module>(kModule);
    for (int i = 0; i < 300 && !HasFailure(); ++i) {
        auto next = std::make_unique<Module>(i % 2 == 0 ? other : kModule);
        last = std::move(next);
        last->exercise();
    }
    fs::remove(other);
}

TEST(Loading, theModuleKnowsItsFileThoughTheWorkingDirectoryChanges) {
    const fs::path before = fs::current_path();
    fs::current_path(kModule.parent_path());
    {
        const Module module("./" + kModule.filename().string());
        fs::current_path("/");
        EXPECT_EQ(module.exercise(), kModule);
    }
    fs::current_path(before);
}

TEST(Loading, theModulesPathFollowsLinks) {
    const fs::path link = fs::temp_directory_path() / ("halyard-link-" + std::to_string(getpid()) + ".so");
    fs::create_symlink(kModule, link);
    EXPECT_EQ(Module(link).exercise(), kModule);
    fs::remove(link);
}

// One line of `readelf --dyn-syms`: number, value, size, type, binding, visibility, section, name.
struct Symbol {
    std::string binding;
    std::string section;
    std::string name;
};

std::vector<Symbol> dynamicSymbols() {
    std::vector<Symbol> symbols;
    FILE* const output = popen(("LC_ALL=C readelf --dyn-syms --wide '" + kModule.string() + "'").c_str(), "r");
    char line[4096];
    while (output != nullptr && fgets(line, sizeof line, output) != nullptr) {
        char binding[64], section[64], name[2048];
        if (sscanf(line, " %*d: %*s %*s %*s %63s %*s %63s %2047s", binding, section, name) == 3)
            symbols.push_back({binding, section, name});
    }
    if (output != nullptr) pclose(output);
    return symbols;
}

TEST(Loading, theModuleExportsOneSymbolAndNothingThatPinsIt) {
    const std::vector<Symbol> symbols = dynamicSymbols();
    ASSERT_FALSE(symbols.empty());
    std::vector<std::string> exported;
    for (const Symbol& symbol : symbols) {
        EXPECT_NE(symbol.binding, "UNIQUE") << symbol.name;
        if (symbol.section != "UND") exported.push_back(symbol.name);
    }
    EXPECT_EQ(exported, std::vector<std::string>{"exerciseModule"});
}

}  // namespace
