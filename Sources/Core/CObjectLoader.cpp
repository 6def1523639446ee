// SPDX-License-Identifier: LicenseRef-Halyard
// How a compiled document becomes objects. The document has been checked as a whole before, so reading its tree can't
// fail; what fails here is a class that finds its attributes or its surroundings wrong.
#include "Core/CApplication.h"
#include "Core/CDocument.h"
#include "Core/CObject.h"
#include "Core/CResourceReader.h"
#include "Core/CTemplateRecord.h"
#include "Core/Log.h"
#include "Core/TimeBase.h"

namespace brt {

CError* CObject::loadXMLData(CStringView name, ERootStages stages) {
    const double begin = secondsSinceOrigin();
    CResourceReader reader;
    BRT_TRY(getFullName(), reader.open(name));
    BRT_TRY(getFullName(), loadDocument(reader, name, stages));

    const double end = secondsSinceOrigin();
    const CStringView fullName = getFullName();
    if (fullName.isEmpty())
        logLine("loadXMLData \"%s\" init time: %.4f s @ %.4f s", name, end - begin, end);
    else
        logLine("loadXMLData \"%s\" init time: %.4f s @ %.4f s // %s", name, end - begin, end, fullName);
    return nullptr;
}

CError* CObject::loadDocument(CPosInputStream& stream, CStringView name, ERootStages stages) {
    const CRef<CDocument> document(new CDocument);
    BRT_TRY(getFullName(), document->open(stream, name));
    CDocumentCursor cursor = document->root();
    if (stages == kInitRoot) return loadElement(*document, cursor);
    BRT_TRY(getFullName(), loadAttributes(*document, cursor));
    BRT_TRY(getFullName(), loadChildren(*document, cursor));
    return nullptr;
}

// An attribute that is empty or "false" doesn't exist afterwards: a reference to it gives its default.
CError* CObject::loadAttributes(const CDocument& document, CDocumentCursor& cursor) {
    for (int rest = cursor.read16(); rest > 0; --rest) {
        const CString& name = document.string(cursor.read16());
        const CString& value = document.string(cursor.read16());
        if (value.isEmpty() || value == CStringView("false")) continue;
        BRT_TRY(getFullName(), setAttr(name, value, kDeferred));
    }
    return nullptr;
}

CError* CObject::loadChildren(CDocument& document, CDocumentCursor& cursor) {
    for (int rest = cursor.read16(); rest > 0; --rest) {
        const CString& tag = document.string(cursor.read16());
        const CString& name = document.string(cursor.read16());
        CObject* child = nullptr;
        BRT_TRY(getFullName(), addChild(child, tag, name, kClassesOnly));
        if (CError* const error = child->loadNode(document, cursor)) {
            release(child);
            return makeError(error, __FILE__, __LINE__, getFullName(), "");
        }
        if (child->m_template) m_templates.findOrInsert(child->getShortName()) = child->m_template.get();
    }
    return nullptr;
}

CError* CObject::loadNode(CDocument& document, CDocumentCursor& cursor) {
    return cursor.read8() == CDocument::kTemplate ? loadTemplate(document, cursor) : loadElement(document, cursor);
}

CError* CObject::loadElement(CDocument& document, CDocumentCursor& cursor) {
    BRT_TRY(getFullName(), loadAttributes(document, cursor));
    BRT_TRY(getFullName(), init());
    BRT_TRY(getFullName(), initChilds());
    BRT_TRY(getFullName(), loadChildren(document, cursor));
    BRT_TRY(getFullName(), initDone());
    m_state = kComplete;
    return nullptr;
}

// A template is kept unread, and not initialised: its body becomes objects when something is made from it.
CError* CObject::loadTemplate(CDocument& document, CDocumentCursor& cursor) {
    const int classTag = cursor.read16();
    const std::uint32_t length = cursor.read32();
    m_template = CRef<CTemplateRecord>(new CTemplateRecord(document, classTag, cursor.position(), length));
    cursor.skip(length);
    BRT_TRY(getFullName(), initChilds());
    BRT_TRY(getFullName(), initDone());
    m_state = kComplete;
    return nullptr;
}

}  // namespace brt
