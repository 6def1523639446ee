// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CAtomicFileWriter.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include "StreamTestTools.h"
#include "Tests/Platform/TemporaryFolder.h"

namespace brt {
namespace {

class CAtomicFileWriterTest : public testing::Test {
protected:
    CString path(const std::string& name) const { return CString::fromPath(m_folder.path(name)); }
    std::string content(const std::string& name) const {
        std::ifstream file(m_folder.bytes(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    unsigned modeOf(const std::string& name) const {
        struct stat status {};
        EXPECT_EQ(stat(m_folder.bytes(name).c_str(), &status), 0);
        return status.st_mode & 0777;
    }
    std::size_t fileCount() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(m_folder.bytes()),
                                                      std::filesystem::directory_iterator()));
    }
    std::string replace(const std::string& name, const std::string& bytes) {
        std::string message = failure(m_writer.open(path(name)));
        if (message.empty()) message = failure(m_writer.write(bytes.data(), static_cast<int>(bytes.size())));
        return message.empty() ? failure(m_writer.commit()) : message;
    }

    TemporaryFolder m_folder;
    CAtomicFileWriter m_writer;
};

TEST_F(CAtomicFileWriterTest, replacesAsAWholeAndKeepsTheRights) {
    EXPECT_EQ(replace("f", "first"), "");
    EXPECT_EQ(content("f"), "first");
    EXPECT_EQ(modeOf("f"), 0600u);

    ASSERT_EQ(chmod(m_folder.bytes("f").c_str(), 0640), 0);
    ASSERT_EQ(failure(m_writer.open(path("f"))), "");
    ASSERT_EQ(failure(m_writer.write("second", 6)), "");
    EXPECT_EQ(content("f"), "first");
    EXPECT_EQ(fileCount(), 2u);
    ASSERT_EQ(failure(m_writer.commit()), "");
    EXPECT_EQ(content("f"), "second");
    EXPECT_EQ(modeOf("f"), 0640u);
    EXPECT_EQ(fileCount(), 1u);
}

TEST_F(CAtomicFileWriterTest, writesThroughALink) {
    std::filesystem::create_directory(m_folder.bytes("elsewhere"));
    ASSERT_EQ(symlink("elsewhere/real", m_folder.bytes("link").c_str()), 0);
    for (const std::string text : {"new", "newer"}) {
        EXPECT_EQ(replace("link", text), "");
        EXPECT_TRUE(std::filesystem::is_symlink(m_folder.bytes("link")));
        EXPECT_FALSE(std::filesystem::is_symlink(m_folder.bytes("elsewhere/real")));
        EXPECT_EQ(content("elsewhere/real"), text);
        EXPECT_EQ(fileCount(), 2u);
    }
}

TEST_F(CAtomicFileWriterTest, leavesNothingBehindWithoutCommit) {
    ASSERT_EQ(replace("f", "old"), "");
    {
        CAtomicFileWriter dropped;
        ASSERT_EQ(failure(dropped.open(path("f"))), "");
        ASSERT_EQ(failure(dropped.write("new", 3)), "");
    }
    ASSERT_EQ(failure(m_writer.open(path("f"))), "");
    m_writer.abandon();
    EXPECT_EQ(failure(m_writer.commit()),
              "File '" + path("f").toUtf8() + "' is kept: what was to replace it isn't complete.");
    EXPECT_EQ(content("f"), "old");
    EXPECT_EQ(fileCount(), 1u);
}

TEST_F(CAtomicFileWriterTest, aFailureKeepsTheTarget) {
    const std::string missing = path("no/f").toUtf8();
    EXPECT_EQ(replace("no/f", ""), "Unable to make a file beside '" + missing + "' to replace it (error 2).");
    EXPECT_NE(failure(m_writer.open("/dev/null")), "");

    ASSERT_EQ(replace("f", "old"), "");
    ASSERT_EQ(failure(m_writer.open(path("f"))), "");
    EXPECT_EQ(failure(m_writer.write("new", -1)), "Unable to write to the file that replaces '" + path("f").toUtf8() +
                                                      "' (required -1 bytes, written 0 bytes, error 0).");
    EXPECT_NE(failure(m_writer.commit()), "");
    EXPECT_EQ(content("f"), "old");

    // The target becomes a folder meanwhile.
    ASSERT_EQ(failure(m_writer.open(path("g"))), "");
    std::filesystem::create_directory(m_folder.bytes("g"));
    EXPECT_EQ(failure(m_writer.commit()), "Unable to replace file '" + path("g").toUtf8() + "' (error 21).");
    EXPECT_EQ(fileCount(), 2u);
}

TEST_F(CAtomicFileWriterTest, twoWritersAndAReaderNeverMeetHalfAFile) {
    constexpr std::size_t kBytes = 20000;
    ASSERT_EQ(replace("f", std::string(kBytes, 'a')), "");
    std::atomic<bool> isRunning{true};
    const auto writeAll = [&](char letter) {
        for (int i = 0; i < 30; ++i) {
            CAtomicFileWriter writer;
            const std::string bytes(kBytes, letter);
            EXPECT_EQ(failure(writer.open(path("f"))), "");
            for (std::size_t at = 0; at < kBytes; at += 1000) EXPECT_EQ(failure(writer.write(&bytes[at], 1000)), "");
            EXPECT_EQ(failure(writer.commit()), "");
        }
    };
    std::thread reader([&] {
        while (isRunning) {
            const std::string bytes = content("f");
            ASSERT_EQ(bytes.size(), kBytes);
            ASSERT_EQ(bytes.find_first_not_of(bytes[0]), std::string::npos);
        }
    });
    std::thread first(writeAll, 'b');
    std::thread second(writeAll, 'c');
    first.join();
    second.join();
    isRunning = false;
    reader.join();
    EXPECT_EQ(fileCount(), 1u);
}

}  // namespace
}  // namespace brt
