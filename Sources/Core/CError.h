// SPDX-License-Identifier: LicenseRef-Halyard
// What a failure travels in. An operation that can fail returns a CError*: null for success, else an error that the
// caller now owns. The caller adds its own position and hands it on (BRT_TRY), or reports it, or drops it by name.
//
// An error is a list of lines: the message first, then a position line for each level that it passed:
//     Unable to open file '/a/b' for reading (error 2).
//     Sources/Core/CFileReader.cpp( 41 )
//     Sources/Core/CAppData.cpp( 230 ) // the context that this level gave, by convention an object's full name
// Owner: whoever received it. Threads: one at a time.
#pragma once

#include <concepts>
#include <cstdint>
#include <span>

#include "Core/CString.h"
#include "Core/CStringList.h"

namespace brt {

class CError : public CBrtMemAllocator {
public:
    const CStringList& lines() const noexcept { return m_lines; }
    CStringList& lines() noexcept { return m_lines; }

    // The text for the user.
    const CString& message() const noexcept { return m_lines[0]; }

private:
    friend CError* makeErrorWith(CError*, const char*, int, CStringView, CStringView, std::span<const CStringView>);
    CError() = default;

    CStringList m_lines;  // never empty once made
    [[maybe_unused]] int m_flag = 1;
};

// What stands for "%1" to "%9" of a message: a text, or an integer in decimal. Lives as long as the call.
class CErrorArgument {
public:
    template <std::integral T>
    CErrorArgument(T number) {
        CString::fromInt(m_digits, static_cast<std::int64_t>(number));
        m_text = m_digits;
    }
    template <class T>
    requires std::convertible_to<const T&, CStringView> CErrorArgument(const T& text) : m_text(text) {}
    CErrorArgument(const CErrorArgument&) = delete;

    operator CStringView() const noexcept { return m_text; }

private:
    CString m_digits;
    CStringView m_text;
};

[[nodiscard]] CError* makeErrorWith(CError* previous, const char* file, int line, CStringView context,
                                    CStringView message, std::span<const CStringView> arguments);

// [any] Adds a message, unless it is empty, and a position line to `previous`, or to a new error if that is null.
// `message` is "@brtstr_<class>_<operation>_<kind> <text>"; the identifier in front of the first blank is dropped. In
// the text "%1" to "%9" stand for the arguments and "%%" for "%". Never fails.
//     return makeError(nullptr, __FILE__, __LINE__, name(),
//                      "@brtstr_CPresetFile_load_TooBig Preset file '%1' is too big.", path);
template <class... Arguments>
[[nodiscard]] CError* makeError(CError* previous, const char* file, int line, CStringView context, CStringView message,
                                const Arguments&... arguments) {
    static_assert(sizeof...(Arguments) <= 9, "places go up to %9");
    if constexpr (sizeof...(Arguments) == 0) {
        return makeErrorWith(previous, file, line, context, message, {});
    } else {
        const CErrorArgument texts[] = {CErrorArgument(arguments)...};
        CStringView views[sizeof...(Arguments)];
        for (std::size_t i = 0; i < sizeof...(Arguments); ++i) views[i] = texts[i];
        return makeErrorWith(previous, file, line, context, message, views);
    }
}

// Runs an operation; if it fails, adds this position and the context, and returns the error to this one's caller.
#define BRT_TRY(context, operation)                                                 \
    do {                                                                            \
        if (::brt::CError* const brtFailure = (operation))                          \
            return ::brt::makeError(brtFailure, __FILE__, __LINE__, (context), ""); \
    } while (false)

// [any] Sets `text` to the message alone or to all lines, with CR LF behind each, and deletes the error. Without an
// error the text is empty and the result false.
bool errorToText(CError* error, CString& text, bool firstLineOnly);

// [any] Writes each line to the log. The error stays the caller's; null is ignored.
void logError(const CError* error);

// [any] Deletes the error; true if there was one. Whoever calls it says in a word why nobody needs to know.
bool discardError(CError* error);

// [any] For what a user must see. Logs the error, deletes it and sets it to null. Shows the details in the error window
// where one can be shown, which is on the thread of a message loop, and returns when the user has closed it; else
// writes them to standard error.
void showError(CError*& error);

// What `showError` shows; the windows' floor brings the window. Returns false if it can't be shown now.
struct ErrorReport {
    CStringView title;
    CStringView text;     // what to do
    CStringView details;  // the error's lines
};
using ErrorWindow = bool (*)(const ErrorReport& report);

// [any] Null: none.
void setErrorWindow(ErrorWindow window) noexcept;

}  // namespace brt
