// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CError.h"

#include <atomic>

#include "Core/Log.h"
#include "Core/NumberText.h"
#include "Platform/CMessageLoop.h"
#include "Platform/StandardStreams.h"

namespace brt {

namespace {

constexpr CStringView kLineEnd = "\r\n";
constexpr CStringView kErrorTitle = "Application Message";
constexpr CStringView kErrorText =
    "An issue has happened when executing the vendor's application.\n\n"
    "If this issue persists, please contact application's support staff as soon as possible. Please, copy the following "
    "information to the clipboard by selecting its text and pressing Ctrl+Insert, and send it to the vendor.  Use "
    "Shift+Insert to insert information from the clipboard into your message.";

constinit std::atomic<ErrorWindow> s_errorWindow{nullptr};

// Drops the identifier of a message literal.
CStringView textOfMessage(CStringView message) {
    if (!message.startsWith("@")) return message;
    const int blank = message.find(u' ');
    return blank < 0 ? message : message.slice(blank + 1);
}

CString substituted(CStringView text, std::span<const CStringView> arguments) {
    CString result;
    for (int i = 0; i < text.length(); ++i) {
        if (text[i] != u'%') {
            result.append(text[i]);
            continue;
        }
        if (++i == text.length()) break;
        const int argument = text[i] - u'1';
        if (text[i] == u'%')
            result.append(u'%');
        else if (argument >= 0 && argument < static_cast<int>(arguments.size()))
            result.append(arguments[static_cast<std::size_t>(argument)]);
    }
    return result;
}

CString positionLine(const char* file, int line, CStringView context) {
    CString text(file);
    text.append("( ").append(integerText(line)).append(" )");
    if (!context.isEmpty()) text.append(" // ").append(context);
    return text;
}

CString joinedLines(const CError& error) {
    CString text;
    for (const CString* line : error.lines()) text.append(*line).append(kLineEnd);
    return text;
}

}  // namespace

CError* makeErrorWith(CError* previous, const char* file, int line, CStringView context, CStringView message,
                      std::span<const CStringView> arguments) {
    CError* const error = previous != nullptr ? previous : new CError;
    if (!message.isEmpty())
        error->m_lines.append(substituted(textOfMessage(message), arguments).view());
    else if (error->m_lines.isEmpty())
        error->m_lines.append(CStringView());
    error->m_lines.append(positionLine(file, line, context).view());
    return error;
}

bool errorToText(CError* error, CString& text, bool firstLineOnly) {
    text.clear();
    if (error == nullptr) return false;
    text = firstLineOnly ? CString(error->message()).append(kLineEnd) : joinedLines(*error);
    return discardError(error);
}

void logError(const CError* error) {
    if (error == nullptr) return;
    for (const CString* line : error->lines()) logLine("%s", *line);
}

bool discardError(CError* error) {
    delete error;
    return error != nullptr;
}

void showError(CError*& error) {
    logError(error);
    CString details("<no details>");
    if (error != nullptr) details = joinedLines(*error);
    discardError(error);
    error = nullptr;

    // A timer's or a worker's thread waits for no user.
    const ErrorWindow window =
        CMessageLoop::current() != nullptr ? s_errorWindow.load(std::memory_order_acquire) : nullptr;
    if (window != nullptr && window({kErrorTitle, kErrorText, details})) return;
    details.append("\n");
    writeStandardError(details.toPath());
}

void setErrorWindow(ErrorWindow window) noexcept { s_errorWindow.store(window, std::memory_order_release); }

}  // namespace brt
