// SPDX-License-Identifier: LicenseRef-Halyard
// How objects talk by events, and what ends with an object.
#include "Core/CClassInfo.h"
#include "Core/CEventRegistry.h"
#include "Core/CObject.h"
#include "Core/CObjectContext.h"
#include "Core/CObjectLinks.h"
#include "Core/CObjectWatch.h"
#include "Core/Log.h"

namespace brt {

CObjectLinks& CObject::links() {
    if (!m_links) m_links = std::make_unique<CObjectLinks>();
    return *m_links;
}

void CObject::setBridge(CRef<CObjectEventBridge> bridge) { links().bridge = std::move(bridge); }

CRef<CObjectAddress> CObject::address() {
    if (m_links && m_links->address) return m_links->address;
    CRef<CObjectEventBridge> bridge;
    for (const CObject* object = this; object && !bridge; object = object->m_parent)
        if (object->m_links) bridge = object->m_links->bridge;
    CRef<CEventRegistry> events(m_context ? &m_context->events() : nullptr);
    CRef<CObjectAddress> made(new CObjectAddress(std::move(events), std::move(bridge), getFullName(), m_id));
    // Objects of the shared tree, which many threads read, have no context.
    if (m_context) links().address = made;
    return made;
}

void CObject::listenObject(CStringView senderFullName, CStringView eventName, CStringView handlerName) {
    const CEventInfo* const handler = m_classInfo ? m_classInfo->findEvent(handlerName) : nullptr;
    if (!handler) {
        logLine("Event handler '%s' not found in listenObject(). // %s", handlerName, getFullName());
        return;
    }
    if (!m_context) return;  // nothing fires in such a tree
    const CRef<CObjectAddress> itsAddress = address();
    links().listened.findOrInsert(senderFullName).insert(eventName);
    m_context->events().subscribe(senderFullName, eventName, *this, itsAddress, *handler);
}

void CObject::unlistenObject(CStringView senderFullName, CStringView eventName) {
    if (!m_links) return;
    const auto sender = m_links->listened.locate(senderFullName);
    if (!sender || !sender->value.contains(eventName)) return;
    m_context->events().unsubscribe(senderFullName, eventName, m_id);
    sender->value.erase(eventName);
    if (sender->value.isEmpty()) m_links->listened.erase(sender);
}

CError* CObject::fireEvent(CStringView eventName) { return fireEvent(eventName, {}); }

CError* CObject::fireEvent(CStringView eventName, const CAttrMap& args) {
    return m_context ? m_context->events().dispatch(getFullName(), eventName, args) : nullptr;
}

void CObject::postEvent(CStringView sender, CStringView handlerName, const CAttrMap& args) {
    address()->post(sender, handlerName, args);
}

CError* CObject::runEvent(CStringView handlerName) { return runEvent(handlerName, {}); }

CError* CObject::runEvent(CStringView handlerName, const CAttrMap& args) {
    const CEventInfo* const row = m_classInfo ? m_classInfo->findEvent(handlerName) : nullptr;
    if (!row)
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CObject_runEvent_UnknownEvent Unknown event '%1'.", handlerName);
    const CObjectWatch watch(*this);
    CError* const error = row->handler(*this, args);
    return error ? makeError(error, __FILE__, __LINE__, watch.fullName(), "") : nullptr;
}

void CObject::releaseBridged() {
    const CRef<CObjectAddress> above = m_parent ? m_parent->address() : CRef<CObjectAddress>();
    if (!above || !above->bridge()) {
        logLine("'%s' can't be released by an event: there is no event bridge above it.", getFullName());
        return;
    }
    if (std::exchange(links().isReleasePosted, true)) return;
    CRef<CEventArgs> args(new CEventArgs({}));
    args->setText(eventArg::kSender, getFullName());
    args->setInteger(eventArg::kSenderId, m_id);
    CError* const error = above->send(std::move(args), "release-child-bridged");
    if (error) links().isReleasePosted = false;  // it may be asked again
    reportError(error);
}

// By the time that it comes, the object may have gone, and another may have got its name.
CError* CObject::onReleaseChildEvent(const CAttrMap& args) {
    const CAttrValue* const sender = args.find(eventArg::kSender);
    const CAttrValue* const senderId = args.find(eventArg::kSenderId);
    if (!sender || !senderId) return nullptr;
    CObject* const child = findObject(sender->asString());
    if (child && child->m_id == senderId->asInteger()) release(child);
    return nullptr;
}

void CObject::releaseLinks() { cutLinks(); }

// The record stays: a handler that runs now may still be in the middle of it.
void CObject::cutLinks() {
    if (!m_links) return;
    for (const auto& [sender, eventNames] : m_links->listened)
        for (const CString& eventName : eventNames) m_context->events().unsubscribe(sender, eventName, m_id);
    m_links->listened.clear();

    for (CObject* const source : m_links->sources) source->m_links->removeFollower(*this);
    m_links->sources.clear();
    for (auto& [name, attr] : m_links->followed) {
        for (const auto& [key, follower] : attr.followers) follower.object->m_links->sources.erase(this);
        attr.followers.clear();
    }
}

}  // namespace brt
