// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CDocumentWriter.h"

#include "Core/CDocument.h"
#include "Core/CError.h"

#include <string>

namespace brt {
namespace {

constexpr std::int64_t kMaxCount = 65535;

void append(std::vector<std::uint8_t>& bytes, std::int64_t number, int size) {
    for (int i = 0; i < size; ++i) bytes.push_back(static_cast<std::uint8_t>(number >> (8 * i)));
}

}  // namespace

CDocumentWriter::CDocumentWriter() {
    beginNode("", "", CDocument::kElement);
    beginContent(0);
}

void CDocumentWriter::attribute(CStringView key, CStringView value) {
    CElement& element = m_open.back();
    BRT_ASSERT(element.childCountPlace == 0);
    ++element.attrCount;
    writeIndex(key);
    writeIndex(value);
}

void CDocumentWriter::beginElement(CStringView tag, CStringView name) {
    beginNode(tag, name, CDocument::kElement);
    beginContent(0);
}

void CDocumentWriter::beginTemplate(CStringView name, CStringView classTag) {
    beginNode("template", name, CDocument::kTemplate);
    writeIndex(classTag);
    const std::size_t lengthPlace = m_tree.size();
    write32(0);
    writeIndex("");  // tag and name of the body count nothing
    writeIndex("");
    m_tree.push_back(CDocument::kElement);
    beginContent(lengthPlace);
}

void CDocumentWriter::endElement() {
    BRT_ASSERT(m_open.size() > 1);
    endContent();
}

CError* CDocumentWriter::finish(std::vector<std::uint8_t>& document) {
    BRT_ASSERT(m_open.size() == 1);
    endContent();
    std::vector<std::uint8_t> offsets;
    std::vector<std::uint8_t> texts;
    for (const CStringView text : m_strings) {
        append(offsets, static_cast<std::int64_t>(4 * m_strings.size() + texts.size()), 4);
        const std::string bytes = CString(text).toUtf8();
        texts.insert(texts.end(), bytes.begin(), bytes.end());
        texts.push_back(0);
    }
    const std::size_t tableLength = offsets.size() + texts.size();
    if (m_strings.size() > CDocument::kMaxStrings) fail("it has more than 65536 different strings");
    if (8 + tableLength + m_tree.size() > CDocument::kMaxBytes) fail("it is larger than 64 MiB");
    if (m_fault)
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CDocumentWriter_finish_TooBig A document can't be written: %1.", m_fault);

    document.clear();
    append(document, static_cast<std::int64_t>(m_strings.size()), 4);
    append(document, static_cast<std::int64_t>(tableLength), 4);
    document.insert(document.end(), offsets.begin(), offsets.end());
    document.insert(document.end(), texts.begin(), texts.end());
    document.insert(document.end(), m_tree.begin(), m_tree.end());
    return nullptr;
}

void CDocumentWriter::beginNode(CStringView tag, CStringView name, std::uint8_t kind) {
    if (!m_open.empty()) {
        CElement& parent = m_open.back();
        if (parent.childCountPlace == 0) {
            parent.childCountPlace = m_tree.size();
            write16(0);
        }
        ++parent.childCount;
    }
    writeIndex(tag);
    writeIndex(name);
    m_tree.push_back(kind);
}

void CDocumentWriter::beginContent(std::size_t bodyLengthPlace) {
    m_open.push_back({m_tree.size(), 0, bodyLengthPlace, 0, 0});
    write16(0);
    // A body is one level below its template.
    std::size_t depth = m_open.size();
    for (const CElement& element : m_open) depth += element.bodyLengthPlace != 0 ? 1 : 0;
    if (depth > CDocument::kMaxDepth) fail("its elements are nested more than 64 deep");
}

void CDocumentWriter::endContent() {
    const CElement element = m_open.back();
    m_open.pop_back();
    if (element.attrCount > kMaxCount) fail("an element has more than 65535 attributes");
    if (element.childCount > kMaxCount) fail("an element has more than 65535 children");
    patch(element.attrCountPlace, element.attrCount, 2);
    if (element.childCountPlace == 0)
        write16(0);
    else
        patch(element.childCountPlace, element.childCount, 2);
    if (element.bodyLengthPlace != 0)
        patch(element.bodyLengthPlace, static_cast<std::int64_t>(m_tree.size() - element.bodyLengthPlace - 4), 4);
}

void CDocumentWriter::write16(std::int64_t number) { append(m_tree, number, 2); }

void CDocumentWriter::write32(std::int64_t number) { append(m_tree, number, 4); }

void CDocumentWriter::patch(std::size_t place, std::int64_t number, int size) {
    for (int i = 0; i < size; ++i)
        m_tree[place + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(number >> (8 * i));
}

void CDocumentWriter::writeIndex(CStringView text) {
    bool isNew = false;
    int& index = m_indexes.findOrInsert(text, isNew);
    if (isNew) {
        index = static_cast<int>(m_strings.size());
        m_strings.push_back(m_indexes.locate(text)->key);
    }
    write16(index);
}

}  // namespace brt
