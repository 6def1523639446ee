// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Docc/CDiagnostics.h"

#include <algorithm>

namespace brt {

std::string CDiagnostics::lines() const {
    std::vector<Error> sorted = m_errors;
    std::ranges::stable_sort(sorted, {}, &Error::place);
    std::string text;
    for (const Error& error : sorted) {
        const SourcePosition position = m_source.positionOf(error.place);
        text += m_source.name() + ":" + std::to_string(position.line) + ":" + std::to_string(position.column) +
                ": error: " + error.message + "\n";
    }
    return text;
}

std::string CDiagnostics::missingLine() const {
    if (m_missing.empty()) return {};
    std::string text = m_source.name() + ": note: not among the resources, but nothing needs them yet:";
    for (const std::string& name : m_missing) text += " " + name;
    return text + "\n";
}

}  // namespace brt
