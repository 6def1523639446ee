// SPDX-License-Identifier: LicenseRef-Halyard
// What is wrong with one document: all that a run finds, in the order of the text, one line each:
//     SharedData.xml:12:9: error: unknown tag 'core:objct'; did you mean 'core:object'?
// Owner: the run. Threads: one at a time.
#pragma once

#include <string>
#include <vector>

#include "Core/CString.h"
#include "Tools/Docc/CSourceText.h"

namespace brt {

class CDiagnostics {
public:
    explicit CDiagnostics(const CSourceText& source) : m_source(source) {}

    void error(std::size_t place, std::string message) { m_errors.push_back({place, std::move(message)}); }

    // Named where nothing uses it yet; no error.
    void missing(CStringView resource) { m_missing.push_back(CString(resource).toUtf8()); }

    bool hasErrors() const noexcept { return !m_errors.empty(); }
    std::string lines() const;
    // One line on all that is missing; empty for nothing.
    std::string missingLine() const;

private:
    struct Error {
        std::size_t place;
        std::string message;
    };

    const CSourceText& m_source;
    std::vector<Error> m_errors;
    std::vector<std::string> m_missing;
};

}  // namespace brt
