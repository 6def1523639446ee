// SPDX-License-Identifier: LicenseRef-Halyard
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <stdio.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

const fs::path kModule = LOADED_MODULE;
const fs::path kLog = fs::temp_directory_path() / ("halyard-loading-" + std::to_string(getpid()) + ".log");

class Module {
public:
    explicit Module(const std::string& path) : m_handle(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
        EXPECT_NE(m_handle, nullptr) << dlerror();
    }
    ~Module() {
        if (m_handle == nullptr) return;
        EXPECT_EQ(dlclose(m_handle), 0) << dlerror();
    }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    // The path that the module gives as its own.
    std::string exercise() const {
        if (m_handle == nullptr) return "no module";
        char path[4096] = {};
        const auto function =
            reinterpret_cast<int (*)(char*, std::size_t, const char*)>(dlsym(m_handle, "exerciseModule"));
        if (function == nullptr) return "no function";
        EXPECT_EQ(function(path, sizeof path, kLog.c_str()), 7);
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

// What the module wrote down while it was unloaded.
std::string takeLog() {
    std::ifstream file(kLog);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    fs::remove(kLog);
    return text;
}

// Its timer ticks, its workers sleep and posts wait in its message loop when it goes.
TEST(Loading, leavesNothingBehindHoweverOften) {
    const auto threads = threadsOfThisProcess();
    for (int i = 0; i < 100; ++i) {
        ASSERT_FALSE(isLoaded()) << i;
        {
            const Module module(kModule);
            EXPECT_EQ(threadsOfThisProcess(), threads) << "a thread was started by the load";
            EXPECT_EQ(module.exercise(), kModule);
            EXPECT_GT(threadsOfThisProcess(), threads);
        }
        ASSERT_TRUE(threadsBecome(threads));
        const std::string log = takeLog();
        EXPECT_NE(log.find("Finalizing application..."), std::string::npos) << log;
        EXPECT_EQ(log.find("never freed"), std::string::npos) << log;
    }
    EXPECT_FALSE(isLoaded());
}

// Plug-ins come and go in any order. For their thread-local data the loader keeps some 1,600 bytes, of which it takes
// back only what it gave out last: each load that overlaps with another one uses up its part.
TEST(Loading, mayOverlapWithOtherModules) {
    const fs::path other = fs::temp_directory_path() / ("halyard-other-" + std::to_string(getpid()) + ".so");
    fs::copy_file(kModule, other);
    auto last = std::make_unique<Module>(kModule);
    for (int i = 0; i < 20 && !HasFailure(); ++i) {
        auto next = std::make_unique<Module>(i % 2 == 0 ? other : kModule);
        last = std::move(next);
        last->exercise();
    }
    fs::remove(other);
    fs::remove(kLog);
}

TEST(Loading, theModuleKnowsItsFileThoughTheWorkingDirectoryChanges) {
    const fs::path before = fs::current_path();
    fs::current_path(kModule.parent_path());
    {
        const Module module("./" + kModule.filename().string());
        fs::current_path("/");
        EXPECT_EQ(module.exercise(), kModule);
    }
    fs::remove(kLog);
    fs::current_path(before);
}

TEST(Loading, theModulesPathFollowsLinks) {
    const fs::path link = fs::temp_directory_path() / ("halyard-link-" + std::to_string(getpid()) + ".so");
    fs::create_symlink(kModule, link);
    EXPECT_EQ(Module(link).exercise(), kModule);
    fs::remove(link);
    fs::remove(kLog);
}

// Therefore the module must be content with little of it.
TEST(Loading, theModuleHasLittleThreadLocalData) {
    FILE* const output = popen(("LC_ALL=C readelf --segments --wide '" + kModule.string() + "'").c_str(), "r");
    ASSERT_NE(output, nullptr);
    unsigned long bytes = 0;
    char line[4096];
    while (fgets(line, sizeof line, output) != nullptr) sscanf(line, " TLS %*s %*s %*s %*s %lx", &bytes);
    pclose(output);
    EXPECT_GT(bytes, 0UL);
    EXPECT_LE(bytes, 64UL);
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
