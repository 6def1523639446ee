// SPDX-License-Identifier: LicenseRef-Halyard
// Where the paths of a document lead, as far as its text can tell. Every element is hung as a plain object into a tree
// like the one that the loader builds, so that names and paths mean here what they mean there.
//
// The body of a template is a tree of its own, since where it will be made is unknown. The shared document's templates
// are made in other trees; those of any other document are made within its own tree.
// Owner: the run. Threads: one at a time. REQUIRES: the application is started.
#pragma once

#include <vector>

#include "Core/CObject.h"
#include "Tools/Docc/CDiagnostics.h"
#include "Tools/Docc/CElement.h"

namespace brt {

class CDocumentPaths {
public:
    struct Target {
        enum Kind { kFound, kMissing, kUnknown };
        Kind kind = kUnknown;
        const CElement* element = nullptr;  // what was found, or what lacks the step
        const CObject* object = nullptr;    // stands for the element
        CStringView missingStep = {};
    };

    // Reports names that no object can have. `shared` is the shared document, and null where `root` is that itself;
    // both outlive this.
    CDocumentPaths(const CElement& root, const CElement* shared, CDiagnostics& diagnostics);
    ~CDocumentPaths();
    CDocumentPaths(const CDocumentPaths&) = delete;
    CDocumentPaths& operator=(const CDocumentPaths&) = delete;

    // `path` as CObject::findObject of the object of `from` takes it.
    Target find(const CElement& from, CStringView path) const;

    // The templates of the document, and those at the top of the shared one; by name, each with its body.
    const COrderedMap<CString, const CElement*>& templates() const noexcept { return m_templates; }

private:
    CObject* plant(const CElement& root, CDiagnostics* diagnostics);
    void hang(const CElement& element, CObject& parent, CDiagnostics* diagnostics);
    Target findFrom(CObject* start, CStringView path, bool isBody) const;

    const CElement& m_root;
    const CElement& m_shared;
    std::vector<CObject*> m_trees;  // owned
    COrderedMap<const CElement*, CObject*> m_objects;
    COrderedMap<const CObject*, const CElement*> m_elements;
    COrderedMap<CString, const CElement*> m_templates;
};

}  // namespace brt
