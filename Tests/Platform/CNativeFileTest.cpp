// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/CNativeFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <iterator>
#include <thread>

#include "Platform/CAutoResetEvent.h"
#include "Platform/FileSystem.h"
#include "Platform/SystemError.h"
#include "Tests/Platform/TemporaryFolder.h"

namespace brt {
namespace {

std::string content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void put(CNativeFile& file, const std::string& text) {
    std::size_t written = 0;
    ASSERT_EQ(file.write(text.data(), text.size(), written), 0);
    ASSERT_EQ(written, text.size());
}

std::string readAll(CNativeFile& file, std::size_t most = 4096) {
    std::string bytes(most, '\0');
    std::size_t got = 0;
    EXPECT_EQ(file.read(bytes.data(), bytes.size(), got), 0);
    bytes.resize(got);
    return bytes;
}

unsigned modeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 0777;
}

class CNativeFileTest : public testing::Test {
protected:
    TemporaryFolder m_folder;
    CNativeFile m_file;
};

TEST_F(CNativeFileTest, modesStartWhereTheySay) {
    const std::u16string path = m_folder.path("f");
    EXPECT_EQ(m_file.open(path, FileMode::read), kErrorNotFound);
    EXPECT_FALSE(m_file.isOpen());

    ASSERT_EQ(m_file.open(path, FileMode::write), 0);
    put(m_file, "12345");
    ASSERT_EQ(m_file.open(path, FileMode::append), 0);
    std::int64_t position = 0;
    ASSERT_EQ(m_file.getPosition(position), 0);
    EXPECT_EQ(position, 5);
    put(m_file, "678");
    ASSERT_EQ(m_file.setPosition(0), 0);
    put(m_file, "A");

    ASSERT_EQ(m_file.open(path, FileMode::readWrite), 0);
    EXPECT_EQ(readAll(m_file, 3), "A23");
    put(m_file, "B");
    ASSERT_EQ(m_file.close(), 0);
    EXPECT_EQ(content(m_folder.bytes("f")), "A23B5678");

    ASSERT_EQ(m_file.open(path, FileMode::write), 0);
    EXPECT_EQ(content(m_folder.bytes("f")), "");
    ASSERT_EQ(m_file.open(m_folder.path("new"), FileMode::readWrite), 0);
    ASSERT_EQ(m_file.open(m_folder.path("new2"), FileMode::append), 0);
}

TEST_F(CNativeFileTest, positionsGoBeyondFourGigabytes) {
    constexpr std::int64_t kFar = 5'000'000'000;
    ASSERT_EQ(m_file.open(m_folder.path("sparse"), FileMode::readWrite), 0);
    ASSERT_EQ(m_file.setPosition(kFar), 0);
    put(m_file, "x");
    std::int64_t size = 0;
    ASSERT_EQ(m_file.getSize(size), 0);
    EXPECT_EQ(size, kFar + 1);
    ASSERT_EQ(m_file.setPosition(kFar), 0);
    EXPECT_EQ(readAll(m_file), "x");
    EXPECT_EQ(m_file.setPosition(-1), EINVAL);
}

TEST_F(CNativeFileTest, errorsAreTheSystems) {
    std::size_t count = 1;
    std::int64_t number = 0;
    char byte = 0;
    EXPECT_EQ(m_file.read(&byte, 1, count), kErrorNotOpen);
    EXPECT_EQ(m_file.write(&byte, 1, count), kErrorNotOpen);
    EXPECT_EQ(m_file.getSize(number), kErrorNotOpen);
    EXPECT_EQ(m_file.flush(), kErrorNotOpen);
    EXPECT_EQ(m_file.close(), 0);

    EXPECT_EQ(m_file.open(u"", FileMode::read), kErrorNotFound);
    EXPECT_EQ(m_file.open(m_folder.path("missing/f"), FileMode::write), kErrorNotFound);
    ASSERT_EQ(m_file.open(u"/dev/full", FileMode::write), 0);
    EXPECT_EQ(m_file.write(&byte, 1, count), ENOSPC);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(m_file.flush(), 0);
    EXPECT_EQ(m_file.getSize(number), ESPIPE);
    EXPECT_STREQ(systemErrorText(ENOSPC), "No space left on device");
    EXPECT_STREQ(systemErrorText(123456), "Unknown error");
}

TEST_F(CNativeFileTest, aNulInsideThePathNamesNoOtherFile) {
    ASSERT_EQ(m_file.open(m_folder.path("f"), FileMode::write), 0);
    EXPECT_EQ(m_file.open(m_folder.path("f") + std::u16string(1, u'\0') + u".txt", FileMode::read), EINVAL);
}

TEST_F(CNativeFileTest, directoriesAreRefusedInEveryMode) {
    for (FileMode mode : {FileMode::read, FileMode::write, FileMode::append, FileMode::readWrite})
        EXPECT_EQ(m_file.open(m_folder.path(), mode), kErrorIsDirectory);
    std::u16string path;
    EXPECT_EQ(m_file.createTemporaryBeside(m_folder.path(), path), kErrorIsDirectory);
}

TEST_F(CNativeFileTest, aNamedPipeNeverHoldsUpAnOpen) {
    ASSERT_EQ(mkfifo(m_folder.bytes("pipe").c_str(), 0600), 0);
    EXPECT_EQ(m_file.open(m_folder.path("pipe"), FileMode::read, FileKind::regular), kErrorNotRegular);
    EXPECT_EQ(m_file.open(u"/dev/null", FileMode::read, FileKind::regular), kErrorNotRegular);
    EXPECT_EQ(m_file.open(m_folder.path("pipe"), FileMode::write), ENXIO);
    ASSERT_EQ(m_file.open(m_folder.path("pipe"), FileMode::read), 0);
    EXPECT_EQ(readAll(m_file), "");
}

TEST_F(CNativeFileTest, readsAPipePieceByPieceThroughInterruptions) {
    ASSERT_EQ(mkfifo(m_folder.bytes("pipe").c_str(), 0600), 0);
    ASSERT_EQ(m_file.open(m_folder.path("pipe"), FileMode::read), 0);
    CNativeFile writer;
    ASSERT_EQ(writer.open(m_folder.path("pipe"), FileMode::write), 0);

    struct sigaction interrupt {};
    struct sigaction before {};
    interrupt.sa_handler = [](int) {};  // without SA_RESTART: calls end with EINTR
    sigaction(SIGUSR1, &interrupt, &before);
    CAutoResetEvent started;
    std::string all;
    std::thread reader([&] {
        started.signal();
        char bytes[64];
        std::size_t got = 0;
        EXPECT_EQ(m_file.readSome(bytes, sizeof bytes, got), 0);
        EXPECT_EQ(got, 3u);
        all = readAll(m_file, 5);
    });
    started.wait();
    for (const char* piece : {"abc", "de", "fgh"}) {
        for (int i = 0; i < 5; ++i) {
            usleep(1000);
            pthread_kill(reader.native_handle(), SIGUSR1);
        }
        put(writer, piece);
    }
    reader.join();
    sigaction(SIGUSR1, &before, nullptr);
    EXPECT_EQ(all, "defgh");
}

TEST_F(CNativeFileTest, aReaderThatWentAwayGivesAnErrorAndNoSignal) {
    ASSERT_EQ(mkfifo(m_folder.bytes("pipe").c_str(), 0600), 0);
    CNativeFile reader;
    ASSERT_EQ(reader.open(m_folder.path("pipe"), FileMode::read), 0);
    ASSERT_EQ(m_file.open(m_folder.path("pipe"), FileMode::write), 0);
    ASSERT_EQ(reader.close(), 0);
    std::size_t written = 0;
    EXPECT_EQ(m_file.write("x", 1, written), EPIPE);
    sigset_t pending;
    sigpending(&pending);
    EXPECT_EQ(sigismember(&pending, SIGPIPE), 0);
    sigset_t mask;
    pthread_sigmask(SIG_BLOCK, nullptr, &mask);
    EXPECT_EQ(sigismember(&mask, SIGPIPE), 0);
}

TEST_F(CNativeFileTest, standardStreamsAreOnlyBorrowed) {
    const int kept = dup(STDIN_FILENO);
    const int null = open("/dev/null", O_RDONLY | O_CLOEXEC);
    dup2(null, STDIN_FILENO);
    ASSERT_EQ(m_file.openStandard(StandardStream::input), 0);
    EXPECT_EQ(readAll(m_file), "");
    EXPECT_FALSE(isTerminal(StandardStream::input));
    EXPECT_EQ(m_file.close(), 0);
    EXPECT_GE(fcntl(STDIN_FILENO, F_GETFD), 0);

    close(STDIN_FILENO);
    EXPECT_EQ(m_file.openStandard(StandardStream::input), kErrorNotOpen);
    EXPECT_FALSE(m_file.isOpen());
    EXPECT_FALSE(isTerminal(StandardStream::input));
    dup2(kept, STDIN_FILENO);
    close(kept);
    close(null);
}

TEST(StandardStreams, errorTextIsUtf8AndSurvivesALostReader) {
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const int kept = dup(STDERR_FILENO);
    dup2(ends[1], STDERR_FILENO);
    close(ends[1]);
    writeStandardError(u"caf\u00E9 \U0001F39B\n");
    char text[64] = {};
    const ssize_t got = read(ends[0], text, sizeof text);
    close(ends[0]);
    writeStandardError(u"nobody reads this\n");
    close(STDERR_FILENO);
    writeStandardError(u"nor this\n");
    dup2(kept, STDERR_FILENO);
    close(kept);
    EXPECT_EQ(got, 11);
    EXPECT_STREQ(text, "caf\xC3\xA9 \xF0\x9F\x8E\x9B\n");
}

// A program that was started by another one, which doesn't look at what it has to say.
TEST(StandardStreams, errorTextWaitsForNoReader) {
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const int room = fcntl(ends[1], F_GETPIPE_SZ);
    const int kept = dup(STDERR_FILENO);
    dup2(ends[1], STDERR_FILENO);
    close(ends[1]);
    writeStandardError(std::u16string(static_cast<std::size_t>(room) + 10'000, u'x'));
    dup2(kept, STDERR_FILENO);
    close(kept);
    std::string read(static_cast<std::size_t>(room) + 1, '\0');
    EXPECT_EQ(::read(ends[0], read.data(), read.size()), room);
    close(ends[0]);
}

TEST_F(CNativeFileTest, aTemporaryFileTakesTheTargetsPlaceAndRights) {
    const mode_t maskBefore = umask(022);
    std::u16string first;
    std::u16string second;
    CNativeFile other;
    ASSERT_EQ(m_file.createTemporaryBeside(m_folder.path("target"), first), 0);
    EXPECT_EQ(modeOf(pathToSystem(first)), 0644u);
    put(m_file, "new");
    ASSERT_EQ(m_file.flush(), 0);
    ASSERT_EQ(renameFile(first, m_folder.path("target")), 0);
    EXPECT_EQ(content(m_folder.bytes("target")), "new");

    ASSERT_EQ(chmod(m_folder.bytes("target").c_str(), 0600), 0);
    ASSERT_EQ(m_file.createTemporaryBeside(m_folder.path("target"), first), 0);
    ASSERT_EQ(other.createTemporaryBeside(m_folder.path("target"), second), 0);
    EXPECT_NE(first, second);
    EXPECT_EQ(modeOf(pathToSystem(first)), 0600u);
    ASSERT_EQ(removeFile(first), 0);
    ASSERT_EQ(removeFile(second), 0);
    EXPECT_EQ(removeFile(second), kErrorNotFound);
    ASSERT_EQ(m_file.createTemporaryBeside(m_folder.path("private"), first, NewFileAccess::userOnly), 0);
    EXPECT_EQ(modeOf(pathToSystem(first)), 0600u);
    EXPECT_TRUE(pathToSystem(first).starts_with(m_folder.bytes(".private.")));
    umask(maskBefore);

    // The longest name that there can be still leaves room.
    EXPECT_EQ(m_file.createTemporaryBeside(m_folder.path(std::string(255, 'n')), first), 0);
    EXPECT_EQ(m_file.createTemporaryBeside(u"/dev/null", first), kErrorNotRegular);
    EXPECT_EQ(m_file.createTemporaryBeside(u"", first), kErrorNotFound);

    EXPECT_EQ(m_file.createTemporaryBeside(m_folder.path("missing/target"), first), kErrorNotFound);
}

TEST_F(CNativeFileTest, theLockKeepsOthersOut) {
    CNativeFile other;
    ASSERT_EQ(m_file.open(m_folder.path("f"), FileMode::write), 0);
    ASSERT_EQ(other.open(m_folder.path("f"), FileMode::readWrite), 0);
    ASSERT_EQ(m_file.lock(0.0), 0);
    EXPECT_EQ(other.lock(0.0), kErrorLockedByOther);
    EXPECT_EQ(other.lock(0.03), kErrorLockedByOther);
    m_file.unlock();
    ASSERT_EQ(other.lock(0.0), 0);
    std::thread closer([&] {
        usleep(20'000);
        EXPECT_EQ(other.close(), 0);
    });
    EXPECT_EQ(m_file.lock(60.0), 0);
    closer.join();
}

TEST_F(CNativeFileTest, descriptorsAreNotInherited) {
    const auto inheritable = [] {
        int count = 0;
        for (int descriptor = 0; descriptor < 1024; ++descriptor) {
            const int flags = fcntl(descriptor, F_GETFD);
            if (flags >= 0 && (flags & FD_CLOEXEC) == 0) ++count;
        }
        return count;
    };
    const int before = inheritable();
    CNativeFile temporary;
    std::u16string path;
    ASSERT_EQ(m_file.open(m_folder.path("f"), FileMode::write), 0);
    ASSERT_EQ(temporary.createTemporaryBeside(m_folder.path("f"), path), 0);
    EXPECT_EQ(inheritable(), before);
}

}  // namespace
}  // namespace brt
