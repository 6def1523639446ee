// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Docc/CDocumentPaths.h"

#include "Core/CApplication.h"

namespace brt {
namespace {

constexpr CStringView kSharedPrefix = "shared::";

const CElement& topOf(const CElement& element) {
    const CElement* top = &element;
    while (!top->isRoot() && !top->isBody()) top = top->parent;
    return *top;
}

bool isSeparator(char16_t unit) noexcept { return unit == u'.' || unit == u'^' || unit == u'/'; }

}  // namespace

CDocumentPaths::CDocumentPaths(const CElement& root, const CElement* shared, CDiagnostics& diagnostics)
    : m_root(root), m_shared(shared ? *shared : root) {
    plant(root, &diagnostics);
    if (!shared) return;
    plant(*shared, nullptr);
    for (const auto& child : shared->children)
        if (child->isTemplate()) m_templates.findOrInsert(child->name) = &child->body();
}

CDocumentPaths::~CDocumentPaths() {
    for (CObject* const tree : m_trees) CObject::release(tree);
}

CObject* CDocumentPaths::plant(const CElement& root, CDiagnostics* diagnostics) {
    CObject* const tree = m_trees.emplace_back(new CObject);
    tree->becomeRoot(CApplication::creators().plainObject(), nullptr);
    m_objects.findOrInsert(&root) = tree;
    m_elements.findOrInsert(tree) = &root;
    for (const auto& child : root.children) hang(*child, *tree, diagnostics);
    return tree;
}

void CDocumentPaths::hang(const CElement& element, CObject& parent, CDiagnostics* diagnostics) {
    CObject* object = nullptr;
    if (CError* const error = parent.addChild(object, CElement::kContentTag, element.name, kClassesOnly)) {
        if (diagnostics) diagnostics->error(element.namePlace, error->message().toUtf8());
        discardError(error);  // reported
        return;
    }
    m_objects.findOrInsert(&element) = object;
    m_elements.findOrInsert(object) = &element;
    if (!element.isTemplate()) {
        for (const auto& child : element.children) hang(*child, *object, diagnostics);
        return;
    }
    if (diagnostics) m_templates.findOrInsert(element.name) = &element.body();
    plant(element.body(), diagnostics);
}

CDocumentPaths::Target CDocumentPaths::find(const CElement& from, CStringView path) const {
    const auto objectOf = [this](const CElement& element) {
        CObject* const* const object = m_objects.find(&element);
        return object ? *object : nullptr;
    };
    if (path.startsWith(kSharedPrefix)) return findFrom(objectOf(m_shared), path.slice(kSharedPrefix.length()), false);
    const bool isBody = topOf(from).isBody();
    if (path.startsWith(".") || path.startsWith("^")) return findFrom(objectOf(from), path, isBody);
    if (!isBody || &m_shared != &m_root) return findFrom(objectOf(m_root), path, false);

    // An object of another tree. What is made there from a template carries the template's name.
    const int point = path.find(u'.');
    for (const auto& child : m_root.children)
        if (child->isTemplate() && point > 0 && path.slice(0, point) == child->name.view())
            return findFrom(objectOf(child->body()), path.slice(point + 1), true);
    return {};
}

CDocumentPaths::Target CDocumentPaths::findFrom(CObject* start, CStringView path, bool isBody) const {
    if (!start || (isBody && path.find(u'/') >= 0)) return {};
    for (int end = path.length(); end >= 0; --end) {
        const bool isStart = end == 0;
        if (!isStart && end < path.length() && !isSeparator(path[end - 1])) continue;
        const CObject* const reached = isStart ? start : start->findObject(path.slice(0, end));
        if (!reached) continue;
        const CElement* const element = *m_elements.find(reached);
        if (end == path.length()) return {Target::kFound, element, reached};
        int stepEnd = end + 1;
        while (stepEnd < path.length() && !isSeparator(path[stepEnd])) ++stepEnd;
        const CStringView step = path.slice(end, stepEnd - end);
        if (isBody && step.startsWith("^")) return {};
        return {Target::kMissing, element, reached, step};
    }
    return {};
}

}  // namespace brt
