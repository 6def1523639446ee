// SPDX-License-Identifier: LicenseRef-Halyard
// A compiled document: a table of strings and a tree of elements. All integers are little-endian.
//
//      0                 4  stringCount
//      4                 4  tableLength: bytes from offset 8 to the tree
//      8   4 x stringCount  where each string begins, counted from offset 8
//                        -  the strings: UTF-8, each with a NUL behind it. String 0 is empty.
//      8 + tableLength   -  the tree: one element, the root
//
//     node     u16 tag, u16 name, u8 kind, then what the kind says
//     kind 0   an element: u16 attrCount, attrCount x (u16 key, u16 value), u16 childCount, childCount nodes
//     kind 1   a template: u16 classTag, u32 bodyLength, one element, the body
//
// Strings are given by index. The tag of a template is "template". Tag and name of the root and of a body count
// nothing.
//
// `open` checks all of it, so that whoever walks the tree later, a template years after its document, meets no
// surprise: every index and length, the nesting, and that the strings together are no larger than their table.
//
// Owner: counted; the load, and the templates that stand in the document. Threads: any; immutable once open.
// The bytes are used where they are, if they stay there as long as the program runs, and else copied.
#pragma once

#include <cstdint>
#include <memory>

#include "Core/CByteBuffer.h"
#include "Core/CCounted.h"
#include "Core/CDocumentCursor.h"
#include "Core/CString.h"

namespace brt {

class CError;
class CPosInputStream;

class CDocument : public CCounted {
public:
    static constexpr int kMaxBytes = 64 << 20;
    static constexpr int kMaxStrings = 65536;
    static constexpr int kMaxDepth = 64;  // elements within elements, through the bodies of templates; the root is one

    enum EKind : std::uint8_t { kElement, kTemplate };

    CDocument() = default;
    ~CDocument() = default;

    // Reads the rest of the stream. `name` is for messages.
    [[nodiscard]] CError* open(CPosInputStream& stream, CStringView name);

    // REQUIRES: an index out of this document.
    const CString& string(int index) const noexcept { return m_strings[static_cast<std::size_t>(index)]; }
    int stringCount() const noexcept { return m_stringCount; }

    // At the attributes of the root, or of the element that takes up `length` bytes at `position`.
    CDocumentCursor root() const noexcept { return element(m_treePosition, m_size - m_treePosition); }
    CDocumentCursor element(std::uint32_t position, std::uint32_t length) const noexcept;

private:
    class CCheck;

    [[nodiscard]] CError* takeBytes(CPosInputStream& stream, CStringView name);
    void readStrings(CCheck& check);

    const std::uint8_t* m_bytes = nullptr;  // of the stream's owner, or in m_copy
    std::uint32_t m_size = 0;
    std::uint32_t m_treePosition = 0;
    int m_stringCount = 0;
    std::unique_ptr<CString[]> m_strings;
    CByteBuffer m_copy;
};

}  // namespace brt
