// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CDocument.h"

#include "Core/CError.h"
#include "Core/CPosStream.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace brt {
namespace {

constexpr std::uint32_t kTablePosition = 8;
constexpr std::uint32_t kNodeNameBytes = 4;  // tag and name
constexpr std::uint32_t kNodeHeadBytes = kNodeNameBytes + 1;

}  // namespace

// Finds the first fault of a document: where it is, and what.
class CDocument::CCheck {
public:
    explicit CCheck(const CDocument& document) noexcept : m_document(document) {}

    bool isGood() const noexcept { return m_fault == nullptr; }
    const char* fault() const noexcept { return m_fault; }
    std::uint32_t position() const noexcept { return m_position; }

    // The first complaint counts.
    bool fail(std::uint32_t position, const char* fault) noexcept {
        if (isGood()) {
            m_position = position;
            m_fault = fault;
        }
        return false;
    }

    // The tree: one element, and nothing behind it.
    void checkTree(CDocumentCursor cursor) noexcept {
        if (checkElement(cursor, 1) && cursor.bytesLeft() > 0) fail(cursor.position(), "bytes behind the root element");
    }

private:
    // A root or a body: an element whose tag and name count nothing.
    bool checkElement(CDocumentCursor& cursor, int depth) noexcept {
        cursor.skip(kNodeNameBytes);
        const std::uint32_t kindPosition = cursor.position();
        if (cursor.read8() != kElement && !cursor.hasFailed())
            return fail(kindPosition, "the root and the body of a template must be elements");
        return checkContent(cursor, depth);
    }

    bool checkNode(CDocumentCursor& cursor, int depth) noexcept {
        const int tag = checkIndex(cursor);
        checkIndex(cursor);
        const std::uint32_t kindPosition = cursor.position();
        const std::uint8_t kind = cursor.read8();
        if (cursor.hasFailed()) return fail(cursor.position(), "the document ends within an element");
        if (!isGood()) return false;
        if (kind == kElement) return checkContent(cursor, depth);
        if (kind != kTemplate) return fail(kindPosition, "unknown kind of element");
        if (m_document.string(tag) != CStringView("template"))
            return fail(kindPosition, "a template must have the tag 'template'");
        return checkTemplate(cursor, depth);
    }

    bool checkContent(CDocumentCursor& cursor, int depth) noexcept {
        if (depth > kMaxDepth) return fail(cursor.position(), "elements are nested too deep");
        for (int rest = cursor.read16(); rest > 0 && !cursor.hasFailed(); --rest) {
            checkIndex(cursor);
            checkIndex(cursor);
        }
        for (int rest = cursor.read16(); rest > 0 && !cursor.hasFailed(); --rest) {
            if (!checkNode(cursor, depth + 1)) return false;
        }
        if (cursor.hasFailed()) return fail(cursor.position(), "the document ends within an element");
        return isGood();
    }

    bool checkTemplate(CDocumentCursor& cursor, int depth) noexcept {
        checkIndex(cursor);
        const std::uint32_t lengthPosition = cursor.position();
        const std::uint32_t length = cursor.read32();
        if (cursor.hasFailed() || length > cursor.bytesLeft())
            return fail(lengthPosition, "the body of a template reaches past the end of what holds it");
        CDocumentCursor body(m_document.m_bytes, cursor.position(), cursor.position() + length);
        if (!checkElement(body, depth + 1)) return false;
        if (body.bytesLeft() > 0) return fail(body.position(), "bytes behind the body of a template");
        cursor.skip(length);
        return isGood();
    }

    // A string's index; 0 if there is no such string.
    int checkIndex(CDocumentCursor& cursor) noexcept {
        const std::uint32_t position = cursor.position();
        const int index = cursor.read16();
        if (index < m_document.stringCount()) return index;
        fail(position, "no such string");
        return 0;
    }

    const CDocument& m_document;
    const char* m_fault = nullptr;
    std::uint32_t m_position = 0;
};

CError* CDocument::open(CPosInputStream& stream, CStringView name) {
    BRT_TRY("", takeBytes(stream, name));
    CCheck check(*this);
    readStrings(check);
    if (check.isGood()) check.checkTree(CDocumentCursor(m_bytes, m_treePosition, m_size));
    if (check.isGood()) return nullptr;
    return makeError(nullptr, __FILE__, __LINE__, "",
                     "@brtstr_CDocument_open_Malformed Document '%1' is damaged at byte %2: %3.", name,
                     check.position(), check.fault());
}

CError* CDocument::takeBytes(CPosInputStream& stream, CStringView name) {
    int size = 0;
    int position = 0;
    BRT_TRY("", stream.getSizeInt(size));
    BRT_TRY("", stream.getPositionInt32(position));
    const int left = std::max(size - position, 0);
    if (left > kMaxBytes)
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CDocument_open_TooBig Document '%1' has %2 bytes, and %3 are allowed.", name, left,
                         kMaxBytes);
    m_bytes = static_cast<const std::uint8_t*>(stream.getDirectData());
    if (!m_bytes) {
        if (!m_copy.trySetSize(left))
            return makeError(nullptr, __FILE__, __LINE__, "",
                             "@brtstr_CDocument_open_NoMemory There is no memory for the %2 bytes of document '%1'.",
                             name, left);
        BRT_TRY("", stream.read(m_copy.data(), left));
        m_bytes = m_copy.data();
    }
    m_size = static_cast<std::uint32_t>(left);
    return nullptr;
}

void CDocument::readStrings(CCheck& check) {
    CDocumentCursor cursor(m_bytes, 0, m_size);
    const std::uint32_t count = cursor.read32();
    const std::uint32_t tableLength = cursor.read32();
    if (count < 1 || count > kMaxStrings) {
        check.fail(0, "a document has 1 to 65536 strings");
        return;
    }
    if (tableLength > cursor.bytesLeft() || 4 * count > tableLength) {
        check.fail(4, "the table of strings doesn't fit into the document");
        return;
    }
    m_treePosition = kTablePosition + tableLength;
    m_strings.reset(new CString[count]);

    // Many offsets may lead to one string. Without this bound a small document could unfold into gigabytes.
    std::size_t room = tableLength;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint32_t entryPosition = cursor.position();
        const std::uint32_t offset = cursor.read32();
        if (offset < 4 * count || offset >= tableLength) {
            check.fail(entryPosition, "a string lies outside the table of strings");
            return;
        }
        const char* const begin = reinterpret_cast<const char*>(m_bytes) + kTablePosition + offset;
        const void* const end = std::memchr(begin, 0, tableLength - offset);
        if (!end) {
            check.fail(kTablePosition + offset, "a string doesn't end within the table of strings");
            return;
        }
        const auto length = static_cast<std::size_t>(static_cast<const char*>(end) - begin);
        if (length >= room) {
            check.fail(entryPosition, "the strings together are larger than their table");
            return;
        }
        room -= length + 1;
        m_strings[i] = CString::fromUtf8({begin, length});
    }
    m_stringCount = static_cast<int>(count);
    if (!m_strings[0].isEmpty()) check.fail(kTablePosition, "string 0 must be empty");
}

CDocumentCursor CDocument::element(std::uint32_t position, std::uint32_t length) const noexcept {
    return {m_bytes, position + kNodeHeadBytes, position + length};
}

}  // namespace brt
