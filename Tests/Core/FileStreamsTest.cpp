// SPDX-License-Identifier: LicenseRef-Halyard
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "Core/CFileReader.h"
#include "Core/CFileWriter.h"
#include "PrintText.h"
#include "StreamTestTools.h"
#include "Tests/Platform/TemporaryFolder.h"

namespace brt {
namespace {

std::string joined(std::initializer_list<std::string> parts) {
    std::string text;
    for (const std::string& part : parts) text += part;
    return text;
}

class FileStreamsTest : public testing::Test {
protected:
    CString path(const std::string& name) const { return CString::fromPath(m_folder.path(name)); }
    // How messages name the file: folders that are no proper text lose what isn't.
    std::string shown(const std::string& name) const { return path(name).toUtf8(); }
    std::string content(const std::string& name) const {
        std::ifstream file(m_folder.bytes(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    void put(const std::string& name, const std::string& bytes) const { std::ofstream(m_folder.bytes(name)) << bytes; }

    TemporaryFolder m_folder;
    CFileReader m_reader;
    CFileWriter m_writer;
};

TEST_F(FileStreamsTest, modesStartWhereTheySay) {
    ASSERT_EQ(failure(m_writer.open(path("f"), false)), "");
    EXPECT_TRUE(m_writer.isWritable());
    ASSERT_EQ(failure(m_writer.write("12345", 5)), "");
    ASSERT_EQ(failure(m_writer.open(path("f"), true)), "");
    std::int64_t position = 0;
    ASSERT_EQ(failure(m_writer.getPosition(position)), "");
    EXPECT_EQ(position, 5);
    ASSERT_EQ(failure(m_writer.write("6", 1)), "");
    ASSERT_EQ(failure(m_writer.setPosition(0)), "");
    ASSERT_EQ(failure(m_writer.write("A", 1)), "");
    ASSERT_EQ(failure(m_writer.close()), "");
    EXPECT_EQ(content("f"), "A23456");

    ASSERT_EQ(failure(m_reader.open(path("f"), false)), "");
    EXPECT_FALSE(m_reader.isWritable());
    EXPECT_EQ(m_reader.name(), path("f"));
    ASSERT_EQ(failure(m_reader.open(m_reader.name(), true)), "");
    EXPECT_TRUE(m_reader.isWritable());
    EXPECT_EQ(content("f"), "A23456");
    ASSERT_EQ(failure(m_reader.close()), "");
    EXPECT_EQ(m_reader.name(), "");
    EXPECT_FALSE(m_reader.isWritable());
    EXPECT_EQ(failure(m_reader.close()), "");

    ASSERT_EQ(failure(m_reader.open(path("new"), true)), "");
    ASSERT_EQ(failure(m_writer.open(path("f"), false)), "");
    EXPECT_EQ(content("f"), "");
}

TEST_F(FileStreamsTest, readsInPiecesAndToTheEnd) {
    put("f", std::string(60, 'x'));
    ASSERT_EQ(failure(m_reader.open(path("f"), false)), "");
    EXPECT_EQ(m_reader.getBytesLeft(), 60);
    char bytes[100];
    EXPECT_EQ(failure(m_reader.read(bytes, 100)),
              joined({"Unable to read from file '", shown("f"), "' (required 100 bytes, read 60 bytes)."}));
    ASSERT_EQ(failure(m_reader.setPosition(0)), "");
    EXPECT_EQ(failure(m_reader.read(bytes, -1)),
              joined({"Unable to read from file '", shown("f"), "' (required -1 bytes, read 0 bytes)."}));
    EXPECT_EQ(failure(m_reader.skip(-1)), "Unable to skip -1 bytes.");
    ASSERT_EQ(failure(m_reader.skip(20)), "");
    EXPECT_EQ(m_reader.getBytesLeft(), 40);
    int count = 100;
    ASSERT_EQ(failure(m_reader.readStreamed(bytes, count)), "");
    EXPECT_EQ(count, 40);
    count = 100;
    ASSERT_EQ(failure(m_reader.readStreamed(bytes, count)), "");
    EXPECT_EQ(count, 0);
    ASSERT_EQ(failure(m_reader.skip(1000)), "");  // as files do
    EXPECT_EQ(m_reader.getBytesLeft(), 0);
}

TEST_F(FileStreamsTest, positionsHave64Bits) {
    put("f", "");
    std::filesystem::resize_file(m_folder.bytes("f"), 1u << 31);
    ASSERT_EQ(failure(m_reader.open(path("f"), false)), "");
    int size = 0;
    EXPECT_EQ(failure(m_reader.getSizeInt(size)), "The size of the stream is above allowed 2 GB.");
    std::filesystem::resize_file(m_folder.bytes("f"), (1u << 31) - 1);
    EXPECT_EQ(failure(m_reader.getSizeInt(size)), "");
    EXPECT_EQ(size, 0x7FFFFFFF);
    ASSERT_EQ(failure(m_reader.setPosition(std::int64_t{1} << 40)), "");
    EXPECT_EQ(failure(m_reader.getPositionInt32(size)), "The size of the stream is above allowed 2 GB.");
}

TEST_F(FileStreamsTest, openingTellsWhatWasTriedAndTheSystemsCode) {
    const std::string missing = joined({"Unable to open file '", shown("missing"), "' for "});
    EXPECT_EQ(failure(m_reader.open(path("missing"), false)), missing + "reading (error 2).");
    EXPECT_FALSE(m_reader.isOpen());
    const std::string below = joined({"Unable to open file '", shown("no/f"), "' for "});
    EXPECT_EQ(failure(m_writer.open(path("no/f"), false)), below + "rewriting (error 2).");
    EXPECT_EQ(failure(m_writer.open(path("no/f"), true)), below + "appending (error 2).");
    EXPECT_EQ(
        failure(m_reader.open(CString::fromPath(m_folder.path()), false)),
        joined({"Unable to open file '", CString::fromPath(m_folder.path()).toUtf8(), "' for reading (error 21)."}));

    // What lies in a folder of the user's must not stop anybody.
    ASSERT_EQ(mkfifo(m_folder.bytes("pipe").c_str(), 0600), 0);
    EXPECT_NE(failure(m_reader.open(path("pipe"), false, FileKind::regular)), "");
    EXPECT_EQ(failure(m_reader.open(path("pipe"), false)), "");
    EXPECT_EQ(m_reader.getBytesLeft(), CInputStream::kUnknownBytesLeft);
}

TEST_F(FileStreamsTest, aBackslashIsALetter) {
    ASSERT_EQ(failure(m_writer.open(path("a\\b"), false)), "");
    EXPECT_TRUE(std::filesystem::exists(m_folder.bytes("a\\b")));
}

// Takes the file away below an open stream: its descriptor is the next one that the process would get.
class CLostFile {
public:
    CLostFile() : m_next(dup(0)) { ::close(m_next); }
    void lose() const { ASSERT_EQ(::close(m_next), 0); }

private:
    int m_next;
};

TEST_F(FileStreamsTest, everyOperationTellsTheSystemsCode) {
    put("f", "x");
    const std::string name = shown("f");
    std::int64_t value = 7;
    char byte = 0;
    int count = 1;
    const CLostFile lost;
    ASSERT_EQ(failure(m_reader.open(path("f"), false)), "");
    lost.lose();
    EXPECT_EQ(failure(m_reader.getPosition(value)), joined({"Unable to get file's '", name, "' position (error 9)."}));
    EXPECT_EQ(failure(m_reader.getSize(value)), joined({"Unable to get file's '", name, "' size (error 9)."}));
    EXPECT_EQ(value, 7);
    EXPECT_EQ(failure(m_reader.setPosition(5)), joined({"Unable to set file's '", name, "' position to 5 (error 9)."}));
    EXPECT_EQ(failure(m_reader.skip(3)), joined({"Unable to increment file's '", name, "' position by 3 (error 9)."}));
    EXPECT_EQ(failure(m_reader.read(&byte, 1)), joined({"Unable to read from file '", name, "' (error 9)."}));
    EXPECT_EQ(failure(m_reader.readStreamed(&byte, count)),
              joined({"Unable to read from file '", name, "' (error 9)."}));
    EXPECT_EQ(failure(m_reader.close()), joined({"Unable to close file '", name, "' (error 9)."}));
    EXPECT_FALSE(m_reader.isOpen());
    EXPECT_EQ(m_reader.name(), path("f"));  // for whoever wants to tell of it

    ASSERT_EQ(failure(m_writer.open(path("f"), false)), "");
    lost.lose();
    EXPECT_EQ(failure(m_writer.write("x", 1)), joined({"Unable to write to file '", name, "' (error 9)."}));
    EXPECT_EQ(failure(m_writer.write("x", -1)),
              joined({"Unable to write to file '", name, "' (required -1 bytes, written 0 bytes)."}));
}

TEST_F(FileStreamsTest, aFullDiskTellsHowMuchItTook) {
    ASSERT_EQ(failure(m_writer.open("/dev/full", false)), "");
    EXPECT_EQ(failure(m_writer.write("x", 1)), "Unable to write to file '/dev/full' (error 28).");

    ASSERT_EQ(failure(m_writer.open(path("f"), false)), "");
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    rlimit limited = before;
    limited.rlim_cur = 100;
    const auto handler = signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &limited);
    CError* const error = m_writer.write(Bytes(150).data(), 150);
    setrlimit(RLIMIT_FSIZE, &before);
    signal(SIGXFSZ, handler);
    ASSERT_NE(error, nullptr);
    const std::string start = joined({"Unable to write to file '", shown("f"), "' ("});
    EXPECT_EQ(error->lines()[0].toUtf8(), start + "error 27).");
    EXPECT_EQ(error->lines()[2].toUtf8(), start + "required 150 bytes, written 100 bytes).");
    discardError(error);
}

// Puts another file in the place of a standard stream.
class CReplacedStream {
public:
    CReplacedStream(int stream, int file) : m_stream(stream), m_saved(dup(stream)) {
        if (file >= 0)
            dup2(file, stream);
        else
            ::close(stream);
    }
    ~CReplacedStream() {
        dup2(m_saved, m_stream);
        ::close(m_saved);
    }
    CReplacedStream(const CReplacedStream&) = delete;
    CReplacedStream& operator=(const CReplacedStream&) = delete;

private:
    int m_stream;
    int m_saved;
};

TEST_F(FileStreamsTest, standardStreamsAreOnlyBorrowed) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    {
        const CReplacedStream input(0, ends[0]);
        const CReplacedStream error(2, ends[1]);
        ASSERT_EQ(failure(m_writer.open("*e", false)), "");
        EXPECT_EQ(m_writer.name(), "stderr");
        ASSERT_EQ(failure(m_writer.write("abc", 3)), "");
        ASSERT_EQ(failure(m_writer.close()), "");
        EXPECT_NE(fcntl(2, F_GETFD), -1);

        ASSERT_EQ(failure(m_reader.open("*", false)), "");
        EXPECT_EQ(m_reader.name(), "stdin");
        EXPECT_EQ(failure(m_reader.skip(1)), "Unable to increment file's 'stdin' position by 1 (error 29).");
        char bytes[8];
        int count = 8;
        ASSERT_EQ(failure(m_reader.readStreamed(bytes, count)), "");  // what is there; a pipe has no end yet
        EXPECT_EQ(std::string(bytes, static_cast<std::size_t>(count)), "abc");
        ASSERT_EQ(failure(m_reader.close()), "");
        EXPECT_NE(fcntl(0, F_GETFD), -1);
    }
    ::close(ends[0]);
    ::close(ends[1]);
    {
        const CReplacedStream noInput(0, -1);
        EXPECT_EQ(failure(m_reader.open("*", false)), "Unable to open file 'stdin' for reading (error 9).");
    }
    {
        const CReplacedStream noOutput(1, -1);
        EXPECT_EQ(failure(m_writer.open("*", false)), "Unable to open file 'stdout' for rewriting (error 9).");
    }
}

}  // namespace
}  // namespace brt
