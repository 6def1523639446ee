// SPDX-License-Identifier: LicenseRef-Halyard
// Holds a document against what the classes declare. A value with a reference ("{...}") is known only at run time and
// not looked at; attributes that whoever makes a template may still give are not missed in it.
// Owner: the run. Threads: one at a time.
#pragma once

#include "Core/COrderedMap.h"
#include "Tools/Docc/CDiagnostics.h"
#include "Tools/Docc/CDocumentPaths.h"
#include "Tools/Docc/CElement.h"
#include "Tools/Docc/CSchema.h"

namespace brt {

class CDocumentCheck {
public:
    // `resources`: the names of all resources; null where they aren't known.
    CDocumentCheck(CSchema& schema, const CDocumentPaths& paths, const COrderedSet<CString>* resources,
                   CDiagnostics& diagnostics)
        : m_schema(schema), m_paths(paths), m_resources(resources), m_diagnostics(diagnostics) {}

    void check(const CElement& element);

private:
    void checkName(const CElement& element, const CClassInfo& info);
    void checkAttributes(const CElement& element, const CClassInfo& info);
    void noteResource(const ElementAttribute& attribute);
    void checkAttribute(const CElement& element, const ElementAttribute& attribute, const CAttrInfo& row);
    void checkRequired(const CElement& element, const CClassInfo& info);
    void reportUnknownTag(const CElement& element);
    void reportUnknownAttribute(const CElement& element, const ElementAttribute& attribute, const CClassInfo& info);

    // What is wrong with a value; "" for nothing.
    std::string faultOf(const CElement& element, CStringView value, const CAttrInfo& row);
    std::string faultOfPath(const CElement& element, CStringView path, const CAttrInfo& row);
    std::string faultOfTemplate(CStringView name) const;
    std::string faultOfResource(CStringView name) const;

    CSchema& m_schema;
    const CDocumentPaths& m_paths;
    const COrderedSet<CString>* m_resources;
    CDiagnostics& m_diagnostics;
};

}  // namespace brt
