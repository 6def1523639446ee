// SPDX-License-Identifier: LicenseRef-Halyard
// The text of a document, and where in it a byte stands for a reader: line and column.
// Owner: the run that compiles it. Threads: any; immutable.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace brt {

struct SourcePosition {
    int line = 1;    // from 1
    int column = 1;  // from 1, in characters, not bytes
};

class CSourceText {
public:
    // `name` is what messages call the file. A byte order mark in front is dropped.
    CSourceText(std::string name, std::string bytes);

    const std::string& name() const noexcept { return m_name; }
    std::string_view bytes() const noexcept { return m_bytes; }

    // A place behind the end counts as the end.
    SourcePosition positionOf(std::size_t place) const;

    // Where the first byte stands that no document can hold: it isn't UTF-8, or is a character above U+FFFF or a NUL.
    // npos if there is none.
    std::size_t findUnusable() const noexcept;

    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

private:
    std::string m_name;
    std::string m_bytes;
    std::vector<std::size_t> m_lineStarts;
};

}  // namespace brt
