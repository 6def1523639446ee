// SPDX-License-Identifier: LicenseRef-Halyard
// The log: lines for developers, in UTF-8. They go to a sink and to a file, both of which only a developer's build or a
// test sets; without them a line is composed and dropped.
//
// Threads: any, but for a steady block of the audio thread.
#pragma once

#include <string_view>

#include "Core/CString.h"
#include "Core/TextFormat.h"

namespace brt {

class CLogSink {
public:
    virtual ~CLogSink() = default;

    // [any] Called on the thread that logs. `text` has no line end; `addLineEnd` tells whether one belongs behind it.
    virtual void write(std::string_view text, bool addLineEnd) = 0;
};

// [any] Sets the sink, which is not owned, or null; returns the one before. Another thread may still be in its `write`.
CLogSink* setLogSink(CLogSink* sink) noexcept;

// [any] Sets the file that lines go to; the empty path means none. The process's first line empties the file, later
// ones are added. A file that can't be written loses the line.
void setLogFile(const CString& path);

// [any] Passes the text to the sink, then writes it to the file, each if there is one. A line end in the file is CR LF.
void logText(CStringView text, bool addLineEnd);
void logUtf8(std::string_view text, bool addLineEnd);

// [any] Composes a line as `formatText` does and logs it; it is cut at 1,023 bytes.
void logFormatted(const char* format, std::span<const CFormatArgument> arguments);

template <class... Arguments>
void logLine(const char* format, const Arguments&... arguments) {
    if constexpr (sizeof...(Arguments) == 0) {
        logFormatted(format, {});
    } else {
        const CFormatArgument list[sizeof...(Arguments)] = {CFormatArgument(arguments)...};
        logFormatted(format, list);
    }
}

}  // namespace brt
