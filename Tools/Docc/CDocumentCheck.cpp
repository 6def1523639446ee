// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Docc/CDocumentCheck.h"

#include <algorithm>

#include "Tools/Docc/ValueCheck.h"
#include "Tools/NearName.h"

namespace brt {
namespace {

std::string quoted(CStringView text) { return "'" + CString(text).toUtf8() + "'"; }

// The loader doesn't store it.
bool isDropped(CStringView value) { return value.isEmpty() || value == "false"; }

// Whether an element may have any attribute, since it names some itself that are not in the class's table.
bool namesAttribute(const CElement& element, const CClassInfo& info, CStringView name) {
    for (const ElementAttribute& attribute : element.attributes) {
        const CAttrInfo* const row = info.findAttribute(attribute.name);
        if (!row || row->kind != EAttrKind::kAttrNames) continue;
        if (hasReference(attribute.value)) return true;
        for (const CStringView word : wordsOf(attribute.value))
            if (word == name) return true;
    }
    return false;
}

}  // namespace

void CDocumentCheck::check(const CElement& element) {
    if (const CClassInfo* const info = m_schema.find(element.tag)) {
        checkName(element, *info);
        if (!element.isTemplate()) checkAttributes(element, *info);
        if (!element.isTemplate() && !element.isBody()) checkRequired(element, *info);
    } else {
        reportUnknownTag(element);
    }
    for (const auto& child : element.children) check(*child);
}

void CDocumentCheck::checkName(const CElement& element, const CClassInfo& info) {
    if (info.isNameRequired() && element.name.isEmpty() && !element.isBody())
        m_diagnostics.error(element.place, "an element " + quoted(element.tag) +
                                               " must have a name, since its events are sent by name");
    // What means something else in a path or a reference would make the object unreachable.
    for (const char16_t unit : {u'.', u'/', u'^', u' ', u'{', u'}', u'?'}) {
        if (element.name.find(unit) < 0) continue;
        m_diagnostics.error(element.namePlace,
                            "no path leads to the name " + quoted(element.name) + "; leave out . / ^ { } ? and blanks");
        break;
    }
}

void CDocumentCheck::checkAttributes(const CElement& element, const CClassInfo& info) {
    for (const ElementAttribute& attribute : element.attributes) {
        if (attribute.name == CStringView("full-name")) {
            m_diagnostics.error(attribute.namePlace, "'full-name' is made by the tree; give the element a name");
        } else if (const CAttrInfo* const row = info.findAttribute(attribute.name)) {
            checkAttribute(element, attribute, *row);
        } else if (info.isAnyAttributeAccepted()) {
            noteResource(attribute);
        } else if (!namesAttribute(element, info, attribute.name)) {
            reportUnknownAttribute(element, attribute, info);
        }
    }
}

// Objects without a class of their own keep names of resources for those who will use them: "file", where the name
// may stand behind a "|".
void CDocumentCheck::noteResource(const ElementAttribute& attribute) {
    if (m_resources == nullptr || !(attribute.name == CStringView("file")) || hasReference(attribute.value)) return;
    const CString name(attribute.value.view().slice(attribute.value.find(u'|') + 1));
    if (!m_resources->contains(name)) m_diagnostics.missing(name);
}

void CDocumentCheck::checkAttribute(const CElement& element, const ElementAttribute& attribute, const CAttrInfo& row) {
    if (hasReference(attribute.value)) return;
    const bool isFlag = row.kind == EAttrKind::kFlag;
    const bool isDefaultDropped = isDropped(row.defaultText) || (isFlag && row.defaultText == "0");
    std::string fault;
    if (isDropped(attribute.value) && !isDefaultDropped)
        fault = "\"" + attribute.value.toUtf8() + "\" isn't stored, and without it stands the class's default " +
                quoted(row.defaultText) +
                (isFlag ? "; write \"0\"" : "; leave the attribute out or write another value");
    else if (!attribute.value.isEmpty())
        fault = faultOf(element, attribute.value, row);
    if (!fault.empty()) m_diagnostics.error(attribute.valuePlace, "attribute " + quoted(attribute.name) + ": " + fault);
}

void CDocumentCheck::checkRequired(const CElement& element, const CClassInfo& info) {
    for (const CAttrInfo* const row : info.attributes()) {
        if (!row->isRequired) continue;
        const bool isGiven = std::ranges::any_of(element.attributes, [row](const ElementAttribute& attribute) {
            return attribute.name.view() == row->name && !isDropped(attribute.value);
        });
        if (!isGiven)
            m_diagnostics.error(element.place, quoted(element.tag) + " needs the attribute " + quoted(row->name) +
                                                   (row->helpText.isEmpty() ? "" : ": ") +
                                                   CString(row->helpText).toUtf8());
    }
}

void CDocumentCheck::reportUnknownTag(const CElement& element) {
    CNearName near(element.tag);
    near.consider(CElement::kTemplateTag);
    near.consider(CElement::kContentTag);
    for (const auto& [tag, record] : m_schema.registry().records()) near.consider(tag);
    m_diagnostics.error(element.place, "unknown tag " + quoted(element.tag) + near.question());
}

void CDocumentCheck::reportUnknownAttribute(const CElement& element, const ElementAttribute& attribute,
                                            const CClassInfo& info) {
    CNearName near(attribute.name);
    near.consider("name");
    for (const CAttrInfo* const row : info.attributes()) near.consider(row->name);
    m_diagnostics.error(attribute.namePlace,
                        quoted(element.tag) + " has no attribute " + quoted(attribute.name) + near.question());
}

std::string CDocumentCheck::faultOf(const CElement& element, CStringView value, const CAttrInfo& row) {
    switch (row.kind) {
    case EAttrKind::kObject: return faultOfPath(element, value, row);
    case EAttrKind::kObjects:
        for (const CStringView path : wordsOf(value))
            if (std::string fault = faultOfPath(element, path, row); !fault.empty()) return fault;
        return {};
    case EAttrKind::kTemplate: return faultOfTemplate(value);
    case EAttrKind::kResource: return faultOfResource(value);
    default: return faultOfValue(value, row);
    }
}

std::string CDocumentCheck::faultOfPath(const CElement& element, CStringView path, const CAttrInfo& row) {
    const CDocumentPaths::Target target = m_paths.find(element, path);
    if (target.kind == CDocumentPaths::Target::kFound) {
        if (m_schema.isOfClass(target.element->tag, row)) return {};
        return quoted(path) + " leads to a " + quoted(target.element->tag) + ", which is of another class";
    }
    if (target.kind == CDocumentPaths::Target::kUnknown) return {};
    if (target.missingStep.startsWith("^")) return quoted(path) + " leads out of the document";
    CNearName near(target.missingStep);
    for (const CObject* const child : target.object->children()) near.consider(child->getShortName());
    const std::string place = target.element->isRoot()   ? "the document"
                              : target.element->isBody() ? "the template's element"
                                                         : quoted(target.object->getFullName());
    return quoted(path) + " leads nowhere: " + place + " has no child " + quoted(target.missingStep) + near.question();
}

std::string CDocumentCheck::faultOfTemplate(CStringView name) const {
    if (m_paths.templates().contains(name)) return {};
    CNearName near(name);
    for (const auto& [known, body] : m_paths.templates()) near.consider(known);
    return "there is no template " + quoted(name) + near.question();
}

std::string CDocumentCheck::faultOfResource(CStringView name) const {
    if (!m_resources || m_resources->contains(name)) return {};
    CNearName near(name);
    for (const auto& known : *m_resources) near.consider(known);
    return "there is no resource " + quoted(name) + near.question();
}

}  // namespace brt
