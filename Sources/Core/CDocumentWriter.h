// SPDX-License-Identifier: LicenseRef-Halyard
// Writes a compiled document (CDocument.h tells the form) from calls in the order of its elements:
//
//     CDocumentWriter writer;
//     writer.attribute("of-the-root", "5");
//     writer.beginElement("audio:cvt-gain", "gain");
//     writer.attribute("decimals", "1");
//     writer.endElement();
//     writer.beginTemplate("plugin", "core:object");
//     writer.attribute("of-the-body", "true");
//     writer.endElement();
//     std::vector<std::uint8_t> bytes;
//     BRT_TRY("", writer.finish(bytes));
//
// Equal calls give equal bytes: strings stand in the order of their first use, each once.
// Owner: a document compiler or a test. Threads: one at a time.
#pragma once

#include <cstdint>
#include <vector>

#include "Core/COrderedMap.h"
#include "Core/CString.h"

namespace brt {

class CError;

class CDocumentWriter {
public:
    CDocumentWriter();

    // Attributes of the innermost open element: the root's first, then those of what was begun last. They stand before
    // the element's children.
    void attribute(CStringView key, CStringView value);

    // What follows, up to `endElement`, belongs to a child of the innermost open element.
    void beginElement(CStringView tag, CStringView name);
    // The same for a template: what follows is its body, which makes an element of the class behind `classTag`.
    void beginTemplate(CStringView name, CStringView classTag);
    void endElement();

    // The whole document. Fails if it has more strings, attributes or children than the form can hold, or is nested too
    // deep. REQUIRES: every element that was begun is ended. The writer is used up.
    [[nodiscard]] CError* finish(std::vector<std::uint8_t>& document);

private:
    struct CElement {
        std::size_t attrCountPlace;
        std::size_t childCountPlace;  // 0: no child yet
        std::size_t bodyLengthPlace;  // 0: not a template
        std::int64_t attrCount;
        std::int64_t childCount;
    };

    void beginNode(CStringView tag, CStringView name, std::uint8_t kind);
    void beginContent(std::size_t bodyLengthPlace);
    void endContent();
    void write16(std::int64_t number);
    void write32(std::int64_t number);
    void patch(std::size_t place, std::int64_t number, int size);
    void writeIndex(CStringView text);
    void fail(const char* what) noexcept {
        if (!m_fault) m_fault = what;
    }

    COrderedMap<CString, int> m_indexes;  // of the strings
    std::vector<CStringView> m_strings;   // keys of the map, in the order of their indexes
    std::vector<std::uint8_t> m_tree;
    std::vector<CElement> m_open;   // the root first
    const char* m_fault = nullptr;  // the first
};

}  // namespace brt
