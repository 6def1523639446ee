// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Docc/CDocumentParser.h"

#include <string>

#include "Core/CDocument.h"
#include "Tools/Docc/DocumentText.h"
#include "Tools/Docc/StartTag.h"

namespace brt {
namespace {

// All that must not stand in a document is asked for too, so that it can be refused by name.
constexpr unsigned kParse = pugi::parse_default | pugi::parse_doctype | pugi::parse_pi | pugi::parse_declaration;

// Runs of blanks as one, and none at the ends.
std::string collapsed(std::string_view text) {
    std::string result;
    for (const char c : text) {
        const bool isBlank = c == ' ' || c == '\t' || c == '\n' || c == '\r';
        if (!isBlank)
            result += c;
        else if (!result.empty() && result.back() != ' ')
            result += ' ';
    }
    if (result.ends_with(' ')) result.pop_back();
    return result;
}

std::string faultOf(const pugi::xml_parse_result& result) {
    if (result.status == pugi::status_end_element_mismatch) return "an element isn't closed, or by the wrong end tag";
    std::string text = result.description();
    if (text[0] >= 'A' && text[0] <= 'Z') text[0] = static_cast<char>(text[0] + 32);
    return text;
}

}  // namespace

std::unique_ptr<CElement> parseDocument(const CSourceText& source, CDiagnostics& diagnostics) {
    return CDocumentParser(source, diagnostics).parse();
}

std::unique_ptr<CElement> CDocumentParser::parse() {
    if (const std::size_t place = m_source.findUnusable(); place != CSourceText::npos) {
        m_diagnostics.error(place,
                            "no document can hold this byte: a document is UTF-8 text of characters up to U+FFFF");
        return nullptr;
    }
    pugi::xml_document document;
    const std::string_view text = m_source.bytes();
    const pugi::xml_parse_result result = document.load_buffer(text.data(), text.size(), kParse, pugi::encoding_utf8);
    if (!result) {
        m_diagnostics.error(static_cast<std::size_t>(result.offset), "no XML: " + faultOf(result));
        return nullptr;
    }
    return parseRoot(document);
}

std::unique_ptr<CElement> CDocumentParser::parseRoot(const pugi::xml_document& document) {
    std::unique_ptr<CElement> root;
    for (const pugi::xml_node node : document.children()) {
        const std::size_t place = placeOf(node);
        if (node.type() == pugi::node_doctype) {
            m_diagnostics.error(place, "a DOCTYPE isn't allowed: documents define no entities and include nothing");
        } else if (node.type() == pugi::node_declaration) {
            const CString encoding = CString::fromUtf8(node.attribute("encoding").as_string("utf-8"));
            CString upper;
            encoding.toUpper(upper);
            if (upper != CStringView("UTF-8"))
                m_diagnostics.error(0, "the encoding is '" + encoding.toUtf8() + "'; documents are UTF-8");
        } else if (node.type() == pugi::node_pi) {
            m_diagnostics.error(place, "a processing instruction isn't allowed");
        } else if (root) {
            m_diagnostics.error(place, "a second root element; all elements stand within one <document>");
        } else {
            root = std::make_unique<CElement>();
            if (CString::fromUtf8(node.name()) != CElement::kRootTag)
                m_diagnostics.error(place, "the root element is <document>, not <" + std::string(node.name()) + ">");
            parseElement(node, *root, 1);
            root->tag = CElement::kRootTag;
        }
    }
    return root;
}

void CDocumentParser::parseElement(pugi::xml_node node, CElement& element, int depth) {
    element.tag = CString::fromUtf8(node.name());
    element.place = element.namePlace = placeOf(node);
    parseAttributes(node, element);
    if (depth > CDocument::kMaxDepth) {
        m_diagnostics.error(element.place,
                            "elements are nested more than " + std::to_string(CDocument::kMaxDepth) + " deep");
    } else if (element.isTemplate() && !element.isRoot()) {
        parseTemplate(node, element, depth);
    } else {
        parseChildren(node, element, depth);
    }
}

void CDocumentParser::parseAttributes(pugi::xml_node node, CElement& element) {
    const std::vector<AttributePlace> places = attributePlaces(m_source.bytes(), element.place);
    auto place = places.begin();
    for (const pugi::xml_attribute attribute : node.attributes()) {
        if (place == places.end()) break;
        checkReferences(place->valueText, place->value);
        if (const std::size_t angle = place->valueText.find('<'); angle != std::string_view::npos)
            m_diagnostics.error(place->value + angle, "'<' within a value: is a quote missing before? Else write &lt;");
        takeAttribute(element, {CString::fromUtf8(attribute.name()), CString::fromUtf8(attribute.value()), place->name,
                                place->value});
        ++place;
    }
}

void CDocumentParser::takeAttribute(CElement& element, ElementAttribute attribute) {
    const bool isName = attribute.name == CStringView("name");
    const bool hasName = element.namePlace != element.place;
    bool isTwice = isName && hasName;
    for (const ElementAttribute& other : element.attributes) isTwice = isTwice || other.name == attribute.name;
    if (isTwice) {
        m_diagnostics.error(attribute.namePlace, "attribute '" + attribute.name.toUtf8() + "' stands here twice");
    } else if (isName) {
        element.name = attribute.value;
        element.namePlace = attribute.valuePlace;
        if (element.isRoot()) m_diagnostics.error(attribute.namePlace, "the root has no name");
        if (element.isBody())
            m_diagnostics.error(attribute.namePlace,
                                "the element within a template has no name; it gets one when it is made");
    } else if (!(element.isRoot() && attribute.name.startsWith("xmlns"))) {
        element.attributes.push_back(std::move(attribute));
    }
}

void CDocumentParser::parseChildren(pugi::xml_node node, CElement& element, int depth) {
    const bool hasElements = node.find_child([](pugi::xml_node child) { return child.type() == pugi::node_element; });
    for (const pugi::xml_node child : node.children()) {
        if (child.type() == pugi::node_element) {
            parseElement(child, element.addChild(""), depth + 1);
        } else if (child.type() != pugi::node_pcdata) {
            m_diagnostics.error(placeOf(child), child.type() == pugi::node_cdata
                                                    ? "a CDATA section isn't allowed; write &lt; and &amp;"
                                                    : "a processing instruction isn't allowed");
        } else if (hasElements || element.isRoot()) {
            const std::string_view text = child.value();
            const std::size_t blanks = std::min(text.find_first_not_of(" \t\r\n"), text.size());
            m_diagnostics.error(placeOf(child) + blanks, "text beside elements; give it an element of its own");
        } else {
            parseText(child, element);
        }
    }
}

void CDocumentParser::parseTemplate(pugi::xml_node node, CElement& element, int depth) {
    if (element.name.isEmpty()) m_diagnostics.error(element.place, "a template must have a name");
    for (const ElementAttribute& attribute : element.attributes)
        m_diagnostics.error(attribute.namePlace, "a template has a name and nothing else; attribute '" +
                                                     attribute.name.toUtf8() + "' belongs to the element in it");
    const pugi::xml_node first = node.first_child();
    const bool hasOne = first && first == node.last_child() && first.type() == pugi::node_element;
    if (!hasOne) m_diagnostics.error(element.place, "a template holds one element: what is made from it");
    if (first.type() == pugi::node_element && CString::fromUtf8(first.name()) == CElement::kTemplateTag)
        m_diagnostics.error(placeOf(first), "a template can't make a template");
    else if (first.type() == pugi::node_element)
        parseElement(first, element.addChild(""), depth + 1);
    if (element.children.empty()) element.addChild(CElement::kContentTag).place = element.place;
}

void CDocumentParser::parseText(pugi::xml_node node, CElement& element) {
    const std::size_t place = placeOf(node);
    const std::string_view rest = m_source.bytes().substr(place);
    checkReferences(rest.substr(0, rest.find('<')), place);
    const std::string text = collapsed(node.value());
    if (text.empty()) return;
    CElement& content = element.addChild(CElement::kContentTag);
    content.name = CElement::kContentTag;
    content.place = content.namePlace = place;
    content.attributes.push_back({"value", CString::fromUtf8(text), place, place});
}

void CDocumentParser::checkReferences(std::string_view text, std::size_t place) {
    std::size_t at = 0;
    const std::string fault = findBadReference(text, at);
    if (!fault.empty()) m_diagnostics.error(place + at, fault);
}

std::size_t CDocumentParser::placeOf(pugi::xml_node node) {
    return static_cast<std::size_t>(std::max<std::ptrdiff_t>(node.offset_debug(), 0));
}

}  // namespace brt
