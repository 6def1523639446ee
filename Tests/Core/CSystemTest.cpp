// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CSystem.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include "Platform/PathText.h"
#include "Tests/Platform/TemporaryFolder.h"

namespace brt {
namespace {

// Names that stored text couldn't hold must come through text that is on its way to the file system.
TEST(CSystem, findsTheSettingsFolderWhateverItsName) {
    const TemporaryFolder folder;
    ASSERT_EQ(setenv("XDG_CONFIG_HOME", folder.bytes("not/yet").c_str(), 1), 0);
    const CString settings = CSystem::applicationDataFolder();
    EXPECT_EQ(pathToSystem(settings.toPath()), folder.bytes("not/yet/"));
    EXPECT_TRUE(CSystem::isDirectory(settings));

    ASSERT_EQ(setenv("XDG_CONFIG_HOME", "/dev/null/nowhere", 1), 0);
    EXPECT_TRUE(CSystem::applicationDataFolder().isEmpty());
    unsetenv("XDG_CONFIG_HOME");
}

TEST(CSystem, knowsItsOwnFile) {
    const std::filesystem::path self = std::filesystem::canonical("/proc/self/exe");
    EXPECT_EQ(pathToSystem(CSystem::modulePath().toPath()), self);
    EXPECT_EQ(pathToSystem(CSystem::moduleDirectory().toPath()), self.parent_path().string() + "/");
}

}  // namespace
}  // namespace brt
