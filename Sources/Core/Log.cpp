// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/Log.h"

#include <atomic>
#include <string>

#include "Platform/CCriticalSection.h"
#include "Platform/CNativeFile.h"

namespace brt {

namespace {

constexpr std::size_t kMaxLineBytes = 1024 - 1;  // of a buffer of 1,024 with a terminator

constinit std::atomic<CLogSink*> s_sink{nullptr};

constinit CCriticalSection s_fileLock;
// Not a block of our allocator: the log outlives it, to tell which blocks were never freed.
constinit std::u16string* s_filePath BRT_GUARDED_BY(s_fileLock) = nullptr;
constinit bool s_isFileBegun BRT_GUARDED_BY(s_fileLock) = false;

void writeToFile(std::string_view text, bool addLineEnd) {
    const CLock lock(s_fileLock);
    if (s_filePath == nullptr) return;
    CNativeFile file;
    if (file.open(*s_filePath, s_isFileBegun ? FileMode::append : FileMode::write) != 0) return;
    s_isFileBegun = true;
    // In one piece: another process may write to the same file.
    std::string line(text);
    if (addLineEnd) line += "\r\n";
    std::size_t written;
    static_cast<void>(file.write(line.data(), line.size(), written));
}

}  // namespace

CLogSink* setLogSink(CLogSink* sink) noexcept { return s_sink.exchange(sink, std::memory_order_acq_rel); }

void setLogFile(const CString& path) {
    const CLock lock(s_fileLock);
    delete s_filePath;
    s_filePath = path.isEmpty() ? nullptr : new std::u16string(path.toPath());
}

void logUtf8(std::string_view text, bool addLineEnd) {
    if (CLogSink* sink = s_sink.load(std::memory_order_acquire)) sink->write(text, addLineEnd);
    writeToFile(text, addLineEnd);
}

void logText(CStringView text, bool addLineEnd) { logUtf8(CString(text).toUtf8(), addLineEnd); }

void logFormatted(const char* format, std::span<const CFormatArgument> arguments) {
    char line[kMaxLineBytes];
    logUtf8(formatText(line, format, arguments), true);
}

}  // namespace brt
