// SPDX-License-Identifier: LicenseRef-Halyard
// What a template holds: the tag of the class that it makes, and where its body lies in the document. It keeps the
// document alive, so templates outlive the load. Owner: counted; the template object, and each object made from it
// until its children stand. Threads: any; immutable.
#pragma once

#include <cstdint>

#include "Core/CCounted.h"
#include "Core/CDocument.h"

namespace brt {

class CTemplateRecord : public CCounted {
public:
    // The body is `length` bytes at `position` of a checked document: one element.
    CTemplateRecord(CDocument& document, int classTag, std::uint32_t position, std::uint32_t length) noexcept
        : m_document(&document), m_classTag(classTag), m_position(position), m_length(length) {}

    CDocument& document() const noexcept { return *m_document; }
    const CString& classTag() const noexcept { return m_document->string(m_classTag); }

    // At the body's attributes.
    CDocumentCursor body() const noexcept { return m_document->element(m_position, m_length); }

private:
    const CRef<CDocument> m_document;
    const int m_classTag;
    const std::uint32_t m_position;
    const std::uint32_t m_length;
};

}  // namespace brt
