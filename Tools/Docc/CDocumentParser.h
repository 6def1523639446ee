// SPDX-License-Identifier: LicenseRef-Halyard
// Turns the nodes of the XML reader into elements, and complains of what only this form of document forbids.
// Owner: one call of parseDocument. Threads: one at a time.
#pragma once

#include <pugixml.hpp>

#include "Tools/Docc/CDiagnostics.h"
#include "Tools/Docc/CElement.h"

namespace brt {

class CDocumentParser {
public:
    CDocumentParser(const CSourceText& source, CDiagnostics& diagnostics)
        : m_source(source), m_diagnostics(diagnostics) {}

    std::unique_ptr<CElement> parse();

private:
    std::unique_ptr<CElement> parseRoot(const pugi::xml_document& document);
    void parseElement(pugi::xml_node node, CElement& element, int depth);
    void parseAttributes(pugi::xml_node node, CElement& element);
    void takeAttribute(CElement& element, ElementAttribute attribute);
    void parseChildren(pugi::xml_node node, CElement& element, int depth);
    void parseTemplate(pugi::xml_node node, CElement& element, int depth);
    void parseText(pugi::xml_node node, CElement& element);
    void checkReferences(std::string_view text, std::size_t place);
    static std::size_t placeOf(pugi::xml_node node);

    const CSourceText& m_source;
    CDiagnostics& m_diagnostics;
};

}  // namespace brt
