// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/FileSystem.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <thread>

#include "Platform/CNativeFile.h"
#include "Platform/SystemError.h"
#include "Platform/SystemFolders.h"
#include "Tests/Platform/TemporaryFolder.h"

namespace brt {
namespace {

class FileSystemTest : public testing::Test {
protected:
    void makeFile(const std::string& name) { std::ofstream(m_folder.bytes(name)) << "x"; }
    void makeLink(const std::string& target, const std::string& name) {
        ASSERT_EQ(symlink(target.c_str(), m_folder.bytes(name).c_str()), 0);
    }

    TemporaryFolder m_folder;
};

TEST_F(FileSystemTest, makesEveryMissingFolderForTheUserAlone) {
    EXPECT_EQ(makeDirectory(m_folder.path("a/b//c/")), 0);
    EXPECT_TRUE(isDirectory(m_folder.path("a/b/c")));
    EXPECT_EQ(makeDirectory(m_folder.path("a/b/c")), 0);
    EXPECT_EQ(makeDirectory(u"/"), 0);
    EXPECT_EQ(makeDirectory(u""), 0);
    struct stat status {};
    ASSERT_EQ(stat(m_folder.bytes("a/b").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777u, 0700u);
}

TEST_F(FileSystemTest, whatIsInTheWayIsAnError) {
    makeFile("file");
    makeLink("nowhere", "dangling");
    EXPECT_EQ(makeDirectory(m_folder.path("file")), ENOTDIR);
    EXPECT_EQ(makeDirectory(m_folder.path("file/below")), ENOTDIR);
    EXPECT_NE(makeDirectory(m_folder.path("dangling/below")), 0);
    EXPECT_EQ(makeDirectory(m_folder.path("x") + std::u16string(1, u'\0')), EINVAL);
    EXPECT_FALSE(isDirectory(m_folder.path("file")));
    EXPECT_FALSE(isDirectory(m_folder.path("missing")));
    EXPECT_TRUE(isDirectory(u""));
}

TEST_F(FileSystemTest, twoMakersOfOneFolderBothSucceed) {
    for (int round = 0; round < 20; ++round) {
        const std::u16string path = m_folder.path(std::to_string(round) + "/a/b/c/d");
        int error = -1;
        std::thread other([&] { error = makeDirectory(path); });
        EXPECT_EQ(makeDirectory(path), 0);
        other.join();
        EXPECT_EQ(error, 0);
    }
}

TEST_F(FileSystemTest, listsByNameAndFollowsLinks) {
    for (const char* name : {"b", "a", "\xFE", ".hidden"}) makeFile(name);
    ASSERT_EQ(makeDirectory(m_folder.path("folder")), 0);
    makeLink("folder", "link");
    makeLink("nowhere", "dangling");
    std::vector<FolderEntry> entries;
    ASSERT_EQ(listDirectory(m_folder.path(), entries), 0);
    std::string names;
    for (const FolderEntry& entry : entries) names += pathToSystem(entry.name) + (entry.isDirectory ? "/ " : " ");
    EXPECT_EQ(names, ".hidden a b dangling folder/ link/ \xFE ");

    EXPECT_EQ(listDirectory(m_folder.path("missing"), entries), kErrorNotFound);
    EXPECT_EQ(listDirectory(m_folder.path("a"), entries), ENOTDIR);
    EXPECT_EQ(entries.size(), 7u);
}

TEST_F(FileSystemTest, renamesOverWhatIsThere) {
    makeFile("old");
    makeFile("new");
    EXPECT_EQ(renameFile(m_folder.path("old"), m_folder.path("new")), 0);
    EXPECT_EQ(renameFile(m_folder.path("old"), m_folder.path("new")), kErrorNotFound);
    ASSERT_EQ(makeDirectory(m_folder.path("folder")), 0);
    EXPECT_EQ(renameFile(m_folder.path("new"), m_folder.path("folder")), kErrorIsDirectory);
    EXPECT_EQ(removeFile(m_folder.path("new")), 0);
}

TEST_F(FileSystemTest, followsLinksToTheRealPath) {
    makeFile("file");
    makeLink("file", "link");
    std::u16string path;
    ASSERT_EQ(realPath(m_folder.path("./link"), path), 0);
    EXPECT_EQ(path, m_folder.path("file"));
    EXPECT_EQ(realPath(m_folder.path("missing"), path), kErrorNotFound);
    EXPECT_EQ(path, m_folder.path("file"));
}

TEST_F(FileSystemTest, followsLinksAlsoToWhatIsNotThereYet) {
    ASSERT_EQ(makeDirectory(m_folder.path("folder")), 0);
    makeLink("folder/second", "first");
    makeLink(m_folder.bytes("missing"), "folder/second");
    std::u16string path;
    ASSERT_EQ(followLinks(m_folder.path("first"), path), 0);
    EXPECT_EQ(path, m_folder.path("missing"));
    ASSERT_EQ(followLinks(m_folder.path("other"), path), 0);
    EXPECT_EQ(path, m_folder.path("other"));

    makeLink("b", "a");
    makeLink("a", "b");
    EXPECT_EQ(followLinks(m_folder.path("a"), path), ELOOP);
    EXPECT_EQ(path, m_folder.path("other"));
}

TEST_F(FileSystemTest, removesOnlyOldTemporaries) {
    CNativeFile file;
    std::u16string recent;
    std::u16string old;
    ASSERT_EQ(file.createTemporaryBeside(m_folder.path("key"), recent), 0);
    ASSERT_EQ(file.createTemporaryBeside(m_folder.path(std::string(250, 'n')), old), 0);
    ASSERT_EQ(file.close(), 0);
    const std::vector<std::string> kept = {".hidden", "k.abcdefghijkl", "..abcdefghijkl", ".k.abcdefghijk1", ".k.ijkl"};
    for (const std::string& name : kept) makeFile(name);
    makeLink("nowhere", ".k.abcdefghijkl");
    constexpr timespec kLongAgo[2] = {{.tv_sec = 1, .tv_nsec = 0}, {.tv_sec = 1, .tv_nsec = 0}};
    for (const auto& entry : std::filesystem::directory_iterator(m_folder.bytes())) {
        if (entry.path().string() == pathToSystem(recent)) continue;
        ASSERT_EQ(utimensat(AT_FDCWD, entry.path().c_str(), kLongAgo, AT_SYMLINK_NOFOLLOW), 0);
    }

    removeOldTemporaries(m_folder.path(), 86400.0);
    EXPECT_FALSE(std::filesystem::exists(pathToSystem(old)));
    EXPECT_TRUE(std::filesystem::exists(pathToSystem(recent)));
    for (const std::string& name : kept) EXPECT_TRUE(std::filesystem::exists(m_folder.bytes(name))) << name;
    EXPECT_TRUE(std::filesystem::is_symlink(m_folder.bytes(".k.abcdefghijkl")));
    removeOldTemporaries(m_folder.path("missing"), 0.0);
}

TEST_F(FileSystemTest, tellsWhetherItMayWrite) {
    EXPECT_TRUE(isWritable(m_folder.path()));
    EXPECT_FALSE(isWritable(m_folder.path("missing")));
    ASSERT_EQ(chmod(m_folder.bytes().c_str(), 0500), 0);
    // Access rights don't count for root, who asks as somebody else here.
    const uid_t user = geteuid();
    constexpr uid_t kNobody = 65534;
    ASSERT_EQ(seteuid(user == 0 ? kNobody : user), 0);
    EXPECT_FALSE(isWritable(m_folder.path()));
    ASSERT_EQ(seteuid(user), 0);
    ASSERT_EQ(chmod(m_folder.bytes().c_str(), 0700), 0);
}

TEST(ModulePath, isTheExecutablesWhateverTheWorkingDirectory) {
    char before[4096];
    ASSERT_NE(getcwd(before, sizeof before), nullptr);
    ASSERT_EQ(chdir("/"), 0);
    const std::string path = pathToSystem(modulePath());
    ASSERT_EQ(chdir(before), 0);
    EXPECT_EQ(path, std::filesystem::canonical("/proc/self/exe"));
}

// Sets a variable of the environment for one scope; null removes it.
class ScopedVariable {
public:
    ScopedVariable(const char* name, const char* value) : m_name(name) {
        if (const char* before = getenv(name)) m_before = before;
        set(value);
    }
    ~ScopedVariable() { set(m_before ? m_before->c_str() : nullptr); }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

private:
    void set(const char* value) { value != nullptr ? setenv(m_name, value, 1) : unsetenv(m_name); }

    const char* m_name;
    std::optional<std::string> m_before;
};

std::u16string userDataFolderWith(const char* configured, const char* home) {
    const ScopedVariable first("XDG_CONFIG_HOME", configured);
    const ScopedVariable second("HOME", home);
    return userDataFolder();
}

TEST(UserDataFolder, takesTheFirstAbsolutePath) {
    EXPECT_EQ(userDataFolderWith("/c\xC3\xA9\xFF/", "/home/u"), std::u16string(u"/c\u00E9") + char16_t{0xDCFF});
    EXPECT_EQ(userDataFolderWith("relative", "/home/u"), u"/home/u/.config");
    EXPECT_EQ(userDataFolderWith("", "/home/u/"), u"/home/u//.config");
    EXPECT_EQ(userDataFolderWith(nullptr, "/"), u"//.config");
    const std::u16string fromDatabase = userDataFolderWith(nullptr, nullptr);
    EXPECT_EQ(fromDatabase, userDataFolderWith(nullptr, "relative"));
    EXPECT_TRUE(fromDatabase.empty() || fromDatabase.ends_with(u"/.config"));
}

}  // namespace
}  // namespace brt
