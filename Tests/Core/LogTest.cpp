// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/Log.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "Core/CBenchmarkRecord.h"
#include "Core/CError.h"
#include "Platform/TemporaryFolder.h"

namespace brt {
namespace {

class Recorder : public CLogSink {
public:
    Recorder() : m_before(setLogSink(this)) {}
    ~Recorder() override { setLogSink(m_before); }
    void write(std::string_view text, bool addLineEnd) override {
        lines.emplace_back(text);
        hasLineEnd = addLineEnd;
    }

    std::vector<std::string> lines;
    bool hasLineEnd = false;

private:
    CLogSink* m_before;
};

std::string contentOf(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

template <class... Arguments>
std::string formatted(const char* format, const Arguments&... arguments) {
    std::array<char, 200> room;
    const CFormatArgument list[sizeof...(arguments) + 1] = {CFormatArgument(arguments)..., 0};
    return std::string(formatText(room, format, {list, sizeof...(arguments)}));
}

template <class... Arguments>
std::string printed(const char* format, const Arguments&... arguments) {
    char room[200];
    std::snprintf(room, sizeof room, format, arguments...);
    return room;
}

// The C library's own form is the oracle: under the "C" locale both must agree.
#define EXPECT_AS_PRINTF(...) EXPECT_EQ(formatted(__VA_ARGS__), printed(__VA_ARGS__))

TEST(TextFormat, agreesWithPrintf) {
    EXPECT_AS_PRINTF("%.4f s @ %.4f s", 0.12345, 1234.5);
    EXPECT_AS_PRINTF("[%6.1f] [%7.0f] [%.8f] [%4.0f]", 3.14159, 12.5, 1e-5, 99999.5);
    EXPECT_AS_PRINTF("[%-8.2f] [%08.2f] [%+.1f] [%f]", -1.5, -1.5, 2.0, 1.0 / 3);
    EXPECT_AS_PRINTF("[%5i] [%-5i] [%05d] [%+d] [%u]", -42, -42, -42, 42, 42u);
    EXPECT_AS_PRINTF("[%x] [%08X] [%lld] [%zu]", 0xBEEFu, 0xBEEFu, -5ll, std::size_t{7});
    EXPECT_AS_PRINTF("[%s] [%10s] [%-10s] [%.2s] 100%%", "text", "text", "text", "text");
    EXPECT_AS_PRINTF("[%c%c]", 'o', 'k');
}

TEST(TextFormat, survivesWhatDoesNotFitTogether) {
    EXPECT_EQ(formatted("%i %s %f", "text", 5, CString(u"\u0416")), "text 5 \xD0\x96");
    EXPECT_EQ(formatted("%i %i|", 1), "1 |");
    EXPECT_EQ(formatted("%"), "");
    EXPECT_EQ(formatted("%.2f", -0.001), "0.00");
    EXPECT_EQ(formatted("%i", INT64_MIN), "-9223372036854775808");
    EXPECT_EQ(formatted("%99999999999i", 1).size(), 200u);  // no overflow; cut at the room
    char room[4];
    const CFormatArgument arguments[] = {CStringView(u"ab\u20AC")};
    EXPECT_EQ(formatText(room, "%s", arguments), "ab");  // never part of a character
}

TEST(Log, linesAreCutAt1023Bytes) {
    Recorder recorder;
    logLine("%s", std::string(2000, 'x'));
    logLine("plain");
    logText(u"\u0416", false);
    ASSERT_EQ(recorder.lines.size(), 3u);
    EXPECT_EQ(recorder.lines[0], std::string(1023, 'x'));
    EXPECT_EQ(recorder.lines[1], "plain");
    EXPECT_EQ(recorder.lines[2], "\xD0\x96");
    EXPECT_FALSE(recorder.hasLineEnd);
}

TEST(Log, theFirstLineOfTheProcessEmptiesTheFile) {
    const TemporaryFolder folder;
    const std::string path = folder.bytes("log.txt");
    std::ofstream(path) << "from another run";
    setLogFile(CString::fromPath(folder.path("log.txt")));
    logLine("one");
    logText("two", false);
    EXPECT_EQ(contentOf(path), "one\r\ntwo");
    setLogFile(CString::fromPath(folder.path("missing/log.txt")));
    logLine("lost");
    setLogFile({});
    logLine("dropped");
    EXPECT_EQ(contentOf(path), "one\r\ntwo");
}

TEST(Log, threadsDoNotTearLines) {
    const TemporaryFolder folder;
    const std::string path = folder.bytes("log.txt");
    setLogFile(CString::fromPath(folder.path("log.txt")));
    const auto work = [](char c) {
        for (int i = 0; i < 200; ++i) logLine("%s", std::string(30, c));
    };
    std::thread other(work, 'a');
    work('b');
    other.join();
    setLogFile({});
    std::ifstream in(path);
    int count = 0;
    for (std::string line; std::getline(in, line); ++count) ASSERT_EQ(line, std::string(30, line[0]) + "\r");
    EXPECT_EQ(count, 400);
}

TEST(Log, errorsAreLoggedLineByLine) {
    Recorder recorder;
    CError* error = makeError(nullptr, "f.cpp", 3, "", "%1", "100%% %s");
    logError(error);
    EXPECT_EQ(recorder.lines, (std::vector<std::string>{"100%% %s", "f.cpp( 3 )"}));
    EXPECT_TRUE(discardError(error));
}

TEST(CBenchmarkRecord, logsTheRecordsThatWereUsed) {
    Recorder recorder;
    logBenchmarkRecords();
    EXPECT_TRUE(recorder.lines.empty());
    CBenchmarkRecord::at(3).add(4'225'000);
    CBenchmarkRecord::at(3).add(4'225'000 * 3);
    logBenchmarkRecords();
    CBenchmarkRecord::at(3) = {};
    ASSERT_EQ(recorder.lines.size(), 1u);
    EXPECT_EQ(recorder.lines[0],
              "BENCH 3:    4.0 msec,       2 calls, 2.00000000 ms/call, 8450000 tk/call, peak 12675000 tk");
    { const CBenchmarkStretch stretch(0); }
    EXPECT_EQ(CBenchmarkRecord::at(0).calls, 1u);
    CBenchmarkRecord::at(0) = {};
}

}  // namespace
}  // namespace brt
