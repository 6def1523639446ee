// SPDX-License-Identifier: LicenseRef-Halyard
// How children are made, named and released.
#include "Core/CApplication.h"
#include "Core/CCreatorRegistry.h"
#include "Core/CObject.h"
#include "Core/CObjectContext.h"
#include "Core/CTemplateRecord.h"
#include "Core/Log.h"
#include "Core/NumberText.h"

#include <limits>

namespace brt {
namespace {

constexpr int kMaxIndex = std::numeric_limits<int>::max() - 1;

// The name before its first "#".
CStringView baseName(CStringView name) noexcept {
    const int hash = name.find(u'#');
    return hash < 0 ? name : name.slice(0, hash);
}

// The index behind the first "#", 0 without one. False where that is no index.
bool wantedIndex(CStringView name, int& index) noexcept {
    const int hash = name.find(u'#');
    index = 0;
    if (hash < 0) return true;
    const CStringView digits = name.slice(hash + 1);
    std::int64_t number = 0;
    if (digits.startsWith("-") || !parseInteger(digits, number) || number > kMaxIndex) return false;
    index = static_cast<int>(number);
    return true;
}

}  // namespace

// The index under which a child of that name hangs here: the wanted one, or behind the last if that is taken.
CError* CObject::chooseIndex(CStringView name, int& index) const {
    if (!wantedIndex(name, index))
        return makeError(
            nullptr, __FILE__, __LINE__, getFullName(),
            "@brtstr_CObject_addChild_InvalidIndex A child can't be named '%1': behind '#' stands a number "
            "from 0 to %2.",
            name, kMaxIndex);
    const NamesakeMap* const namesakes = m_names.find(baseName(name));
    if (!namesakes || !namesakes->contains(index)) return nullptr;
    const int greatest = namesakes->last()->key;
    if (greatest >= kMaxIndex)
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CObject_addChild_NoFreeIndex No index is left for another child named '%1'.",
                         baseName(name));
    index = greatest + 1;
    return nullptr;
}

CError* CObject::addChild(CObject*& child, CStringView tag, CStringView name, ETagLookup lookup) {
    if (m_isReadOnly)
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CObject_addChild_ReadOnly Error adding child to read-only object.");
    if (m_depth >= kMaxDepth)
        return makeError(
            nullptr, __FILE__, __LINE__, getFullName(),
            "@brtstr_CObject_addChild_TooDeep Child '%1' (tag '%2') would lie more than %3 levels below the "
            "root; does a template contain itself?",
            name, tag, kMaxDepth);
    int index = 0;
    BRT_TRY(getFullName(), chooseIndex(name, index));

    CTemplateRecord* const source = lookup == kTemplatesFirst ? findTemplate(tag) : nullptr;
    CObject* const made = makeObject(source ? source->classTag().view() : tag, name);
    made->m_madeFrom = CRef<CTemplateRecord>(source);
    hang(made, baseName(name), index);
    child = made;
    BRT_TRY(getFullName(), onChildAdded(made));
    return nullptr;
}

// An object of the class behind a tag, not yet in a tree.
CObject* CObject::makeObject(CStringView classTag, CStringView name) const {
    const CCreatorRegistry& creators = CApplication::creators();
    const CCreatorRegistry::CRecord* const record = creators.find(classTag);
    CObject* const made = record ? record->create() : new CObject;
    made->m_classInfo = record ? &record->info : &creators.plainObject();
    made->m_tag = classTag;
    if (!record && classTag != "template" && classTag != "content") {
        const CStringView fullName = getFullName();
        if (fullName.isEmpty())
            logLine("Creating CObject '%s' (tag '%s')", name, classTag);
        else
            logLine("Creating CObject '%s' (tag '%s') // %s", name, classTag, fullName);
    }
    return made;
}

void CObject::hang(CObject* child, CStringView name, int index) {
    child->m_parent = this;
    child->m_root = m_root;
    child->m_context = m_context;
    child->m_depth = static_cast<std::uint16_t>(m_depth + 1);
    child->m_index = index;
    if (m_context) child->m_id = m_context->nextId();
    m_names.findOrInsert(name).findOrInsert(index) = child;

    CString fullName = getFullName();
    if (!fullName.isEmpty()) fullName += ".";
    fullName += name;
    if (index != 0) fullName.append("#").append(integerText(index));
    child->m_attributes.findOrInsert(kFullName).setRawText(fullName);  // names come from users too
    m_children.append(child);
}

CError* CObject::onChildAdded(CObject*) { return nullptr; }

void CObject::onChildRemoved(CObject* child) {
    int place = m_children.count() - 1;  // most are released from the last on
    while (place >= 0 && m_children[place] != child) --place;
    if (place < 0) return;
    m_children.removeAt(place);

    // The name under which it hangs is what its full name has beyond this object's.
    const int prefix = getFullName().length();
    const CStringView name = baseName(child->getFullName().slice(prefix > 0 ? prefix + 1 : 0));
    const auto namesakes = m_names.locate(name);
    namesakes->value.erase(child->m_index);
    if (namesakes->value.isEmpty()) m_names.erase(namesakes);

    const auto itsTemplate = m_templates.locate(child->getShortName());
    if (itsTemplate && itsTemplate->value == child->m_template.get()) m_templates.erase(itsTemplate);
}

void CObject::detach() {
    if (m_parent) m_parent->onChildRemoved(this);
}

void CObject::release(CObject* object) {
    if (!object) return;
    object->releaseLinks();
    // Anew each time: a child's release may take others with it.
    while (!object->m_children.isEmpty()) release(object->m_children.last());
    object->detach();
    delete object;
}

CTemplateRecord* CObject::findTemplate(CStringView name) const noexcept {
    for (const CObject* object = this; object; object = object->m_parent) {
        if (CTemplateRecord* const* const found = object->m_templates.find(name)) return *found;
    }
    const CObject* const shared = CApplication::sharedObject();
    CTemplateRecord* const* const found = shared ? shared->m_templates.find(name) : nullptr;
    return found ? *found : nullptr;
}

bool CObject::hasTemplate(CStringView tag) const noexcept { return findTemplate(tag) != nullptr; }

CError* CObject::createChildOfClass(CObject*& child, CStringView tag, CStringView name, ETemplateNeed need,
                                    TypeTest test, const CAttrMap* overrides, const CAttrMap* attrs) {
    child = nullptr;
    if (need == kTemplateRequired && !hasTemplate(tag))
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CObject_createChild_NoTemplate Run-time template '%1' does not exist.", tag);
    CObject* made = nullptr;
    CError* const error = addChild(made, tag, name, kTemplatesFirst);
    if (made && !test(made)) {
        release(made);
        return makeError(
            error, __FILE__, __LINE__, getFullName(),
            "@brtstr_CObject_createChild_InvalidObjectClass Object of invalid class created (child tag '%1', "
            "child name '%2').",
            tag, name);
    }
    child = made;
    if (error || !made) return makeError(error, __FILE__, __LINE__, getFullName(), "");

    if (attrs) {
        for (const auto& [attrName, value] : *attrs)
            BRT_TRY(getFullName(), made->setAttrValue(attrName, value, kDeferred));
    }
    made->m_overrides = overrides;
    CError* const failure = made->runStages();
    made->m_overrides = nullptr;  // where a stage failed ahead of the base's: they belong to the caller
    BRT_TRY(getFullName(), failure);
    return nullptr;
}

}  // namespace brt
