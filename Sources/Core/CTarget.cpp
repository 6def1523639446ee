// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CTarget.h"

#include "Core/CObjectAddress.h"

namespace brt {

CTargetLink::~CTargetLink() { unlisten(); }

void CTargetLink::init(CObject& owner, CStringView fixedPath, CStringView changeEvent, CObject* eventRunner,
                       CStringView attrName) {
    m_owner = &owner;
    const bool isAnother = eventRunner && eventRunner != &owner;
    m_runnerName = !isAnother ? CStringView() : eventRunner->parent() ? eventRunner->getFullName() : CStringView("/");
    m_runnerId = isAnother ? eventRunner->id() : -1;
    m_fixedPath = fixedPath;
    m_changeEvent = changeEvent;
    m_attrName = attrName;
    update();
}

CStringView CTargetLink::getPath() const {
    const CAttrValue* const value = m_attrName.isEmpty() ? nullptr : m_owner->findAttr(m_attrName);
    return value ? value->asString() : m_fixedPath.view();
}

void CTargetLink::addEvent(CStringView eventName, CStringView handlerName) {
    m_handlers.findOrInsert(eventName) = handlerName;
    if (!m_targetName.isEmpty()) m_owner->listenObject(m_targetName, eventName, handlerName);
}

void CTargetLink::update() {
    unlisten();
    m_path = getPath();
    m_targetName = m_owner->getObjectPathName(m_path);
    const CObject* const target = m_owner->findObject(m_path);
    m_targetId = target ? target->id() : -1;
    if (!m_targetName.isEmpty())
        for (const auto& [eventName, handlerName] : m_handlers)
            m_owner->listenObject(m_targetName, eventName, handlerName);
    CObject* const runner = m_changeEvent.isEmpty() ? nullptr : eventRunner();
    if (runner) reportError(runner->runEvent(m_changeEvent));
}

// Null once it has gone.
CObject* CTargetLink::eventRunner() const {
    if (m_runnerName.isEmpty()) return m_owner;
    CObject* const runner = m_owner->findObject(m_runnerName);
    return runner && runner->id() == m_runnerId ? runner : nullptr;
}

CObject* CTargetLink::find() {
    CObject* const target = m_owner ? m_owner->findObject(m_path) : nullptr;
    if (!target) return nullptr;
    if (m_targetId < 0) m_targetId = target->id();
    return target->id() == m_targetId ? target : nullptr;
}

void CTargetLink::unlisten() {
    if (m_targetName.isEmpty()) return;
    for (const auto& [eventName, handlerName] : m_handlers) m_owner->unlistenObject(m_targetName, eventName);
}

}  // namespace brt
