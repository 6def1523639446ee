// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CObject.h"

#include "Core/CClassInfo.h"
#include "Core/CObjectContext.h"
#include "Core/CObjectLinks.h"
#include "Core/CObjectWatch.h"
#include "Core/CTemplateRecord.h"

namespace brt {

CObject::CObject() : m_root(this) {}

CObject::~CObject() {
    for (CObjectWatch* watch = m_watches; watch; watch = watch->m_outer) watch->m_object = nullptr;
    cutLinks();  // what its children's release has tied again
    if (m_root == this) delete m_context;
}

CError* CObject::init() {
    if (m_madeFrom) {
        CDocumentCursor body = m_madeFrom->body();
        BRT_TRY(getFullName(), loadAttributes(m_madeFrom->document(), body));
    }
    if (const CAttrMap* const overrides = std::exchange(m_overrides, nullptr)) {
        for (const auto& [name, value] : *overrides) BRT_TRY(getFullName(), setAttrValue(name, value, kDeferred));
    }
    m_state = kAttributesSet;
    return nullptr;
}

CError* CObject::initChilds() {
    BRT_TRY(getFullName(), flushPendingAttrs());
    m_state = kHandlersRun;
    if (const CRef<CTemplateRecord> source = std::exchange(m_madeFrom, {})) {
        CDocumentCursor body = source->body();
        body.skip(4U * body.read16());  // the attributes
        BRT_TRY(getFullName(), loadChildren(source->document(), body));
    }
    return nullptr;
}

CError* CObject::initDone() {
    m_state = kChildrenMade;
    return nullptr;
}

CError* CObject::runStages() {
    BRT_TRY(getFullName(), init());
    BRT_TRY(getFullName(), initChilds());
    BRT_TRY(getFullName(), initDone());
    return nullptr;
}

void CObject::becomeRoot(const CClassInfo& plainObject, CObjectContext* context) {
    m_classInfo = &plainObject;
    m_context = context;
    if (context) m_id = context->nextId();
}

void CObject::makeReadOnly() {
    for (const auto& [name, value] : m_attributes) value.convertAll();
    m_isReadOnly = true;
    for (CObject* const child : m_children) child->makeReadOnly();
}

void CObject::describeClass(CClassInfo& info) {
    static constexpr CEventInfo kReleaseChild =
        event<&CObject::onReleaseChildEvent>("release-child-bridged", "releases the child named by \"sender\"");
    info.addCommonEvent(kReleaseChild);
}

void CObject::describeBag(CClassInfo& info) {
    describeClass(info);
    info.acceptAnyAttribute();
}

}  // namespace brt
