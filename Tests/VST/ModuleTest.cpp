// SPDX-License-Identifier: LicenseRef-Halyard
// The file that hosts load.
#include <dlfcn.h>
#include <stdio.h>

#include <set>

#include "VstHost.h"

namespace brt {
namespace {

const std::string kModule = PLUGIN_MODULE;

std::vector<std::string> linesOf(const std::string& command) {
    std::vector<std::string> lines;
    FILE* const output = popen(("LC_ALL=C " + command + " '" + kModule + "'").c_str(), "r");
    char line[4096];
    while (output != nullptr && fgets(line, sizeof line, output) != nullptr) lines.emplace_back(line);
    EXPECT_TRUE(output != nullptr && pclose(output) == 0) << command;
    return lines;
}

bool isAnyWith(const std::vector<std::string>& lines, const std::string& part) {
    for (const std::string& line : lines)
        if (line.find(part) != std::string::npos) return true;
    return false;
}

TEST(Module, exportsOneNameAndHoldsNothingInMemory) {
    std::vector<std::string> names;
    for (const std::string& line : linesOf("nm --dynamic --defined-only --format=posix"))
        names.push_back(line.substr(0, line.find(' ')));
    EXPECT_THAT(names, testing::ElementsAre("VSTPluginMain"));
    EXPECT_FALSE(isAnyWith(linesOf("readelf --dyn-syms --wide"), "UNIQUE"));
}

TEST(Module, bringsItsOwnCopiesOfWhatHostsMayHaveInOtherVersions) {
    const std::vector<std::string> dynamic = linesOf("readelf --dynamic --wide");
    ASSERT_TRUE(isAnyWith(dynamic, "NEEDED")) << "nothing could be read";
    for (const char* const library : {"libstdc++", "libgcc_s", "libz.", "liblz4"})
        EXPECT_FALSE(isAnyWith(dynamic, "[" + std::string(library))) << library;
}

TEST(Module, isHardened) {
    const std::vector<std::string> segments = linesOf("readelf --segments --wide");
    EXPECT_TRUE(isAnyWith(segments, "GNU_RELRO"));
    EXPECT_TRUE(isAnyWith(linesOf("readelf --dynamic --wide"), "BIND_NOW"));
    bool hasStack = false;
    for (const std::string& line : segments) {
        if (line.find("GNU_STACK") == std::string::npos) continue;
        hasStack = true;
        EXPECT_EQ(line.find("RWE"), std::string::npos) << line;
    }
    EXPECT_TRUE(hasStack);
}

class LoadedModule : public VstFixture {};

TEST_F(LoadedModule, comesAndGoesManyTimes) {
    for (int i = 0; i < 100; ++i) {
        void* const handle = dlopen(kModule.c_str(), RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(handle, nullptr) << dlerror();
        const auto entry = reinterpret_cast<VstHost::Entry>(dlsym(handle, "VSTPluginMain"));
        ASSERT_NE(entry, nullptr);
        // A scan, with two at once now and then.
        {
            VstHost host;
            VstHost other;
            ASSERT_TRUE(host.open(entry));
            if (i % 10 == 0) {
                ASSERT_TRUE(other.open(entry));
            }
            EXPECT_EQ(host.textOf(effGetEffectName, kVstMaxEffectNameLen), "Halyard");
            host.resume();
            host.play(VstHost::tone<float>(64));
            EXPECT_EQ(host.setChunk(host.chunk()), 1);
        }
        ASSERT_EQ(dlclose(handle), 0) << dlerror();
        void* const still = dlopen(kModule.c_str(), RTLD_NOW | RTLD_NOLOAD);
        ASSERT_EQ(still, nullptr) << "load " << i;
    }
}

}  // namespace
}  // namespace brt
