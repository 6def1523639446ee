// SPDX-License-Identifier: LicenseRef-Halyard
// What is wrong with one document: all that a run finds, in the order of the text, one line each:
//     SharedData.xml:12:9: error: unknown tag 'core:objct'; did you mean 'core:object'?
// Owner: the run. Threads: one at a time.
#pragma once

#include <string>
#include <vector>

#include "Tools/Docc/CSourceText.h"

namespace brt {

class CDiagnostics {
public:
    explicit CDiagnostics(const CSourceText& source) : m_source(source) {}

    void error(std::size_t place, std::string message) { m_errors.push_back({place, std::move(message)}); }

    bool hasErrors() const noexcept { return !m_errors.empty(); }
    std::string lines() const;

private:
    struct Error {
        std::size_t place;
        std::string message;
    };

    const CSourceText& m_source;
    std::vector<Error> m_errors;
};

}  // namespace brt
