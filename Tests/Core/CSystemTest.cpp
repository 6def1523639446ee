// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CSystem.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include "Core/CError.h"
#include "Platform/CMessageLoop.h"
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

TEST(CSystem, tellsWithANumberThatALoopTakesNoMoreMessages) {
    class CSilent final : public CLoopTarget {
        void handleMessage(std::uint32_t, std::int64_t) override {}
    };
    std::shared_ptr<CMessageLoop> loop;
    ASSERT_EQ(CMessageLoop::obtain(loop), 0);
    CSilent silent;
    const CLoopAddress address = loop->addressOf(loop->addTarget(silent));
    EXPECT_EQ(CSystem::sendEvent(CLoopAddress(), 0x1400, 1), nullptr);
    for (std::size_t i = 0; i < CLoopAddress::kMostWaitingMessages; ++i)
        ASSERT_EQ(CSystem::sendEvent(address, 0x1400, 1), nullptr);
    CString text;
    ASSERT_TRUE(errorToText(CSystem::sendEvent(address, 0x1400, 1), text, true));
    EXPECT_EQ(text, CString("Post message error 105.\r\n"));
    loop->removeTarget(address.target());
    EXPECT_EQ(CSystem::sendEvent(address, 0x1400, 1), nullptr);
}

}  // namespace
}  // namespace brt
