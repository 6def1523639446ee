// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioParamRemapDef.h"

#include "Core/CClassInfo.h"
#include "Core/CError.h"

namespace brt {
namespace {

// A second child of the same name has a number behind it.
bool isContent(const CObject& child) {
    const CStringView name = child.getShortName();
    return name == "content" || name.startsWith("content#");
}

}  // namespace

void CAudioParamRemapDef::describeClass(CClassInfo& info) {
    CObject::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::text("orig").help("the alias; a first pair together with \"new\""),
        attr::text("new").help("the parameter that the alias means"),
    };
    info.addAttributes(kAttributes);
}

CError* CAudioParamRemapDef::initDone() {
    BRT_TRY(getFullName(), CObject::initDone());
    const CStringView orig = getAttrString("orig");
    const CStringView target = getAttrString("new");
    if (!orig.isEmpty() && !target.isEmpty()) addPair(orig, target);
    for (const CObject* const child : children()) {
        if (isContent(*child)) BRT_TRY(getFullName(), parsePairs(child->getAttrString("value")));
    }
    if (m_pairs.isEmpty())
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CAudioParamRemapDef_init_NoRemapsDefined No remappings defined.");
    return nullptr;
}

CError* CAudioParamRemapDef::parsePairs(const CString& text) {
    CStringList fields;
    text.split(fields, text.find(u';') >= 0 ? u';' : u' ', true, true);
    CStringList parts;
    for (const CString* const field : fields) {
        field->split(parts, u'=', true, true);
        if (parts.count() != 2 || parts[0].view().trimmed().isEmpty() || parts[1].view().trimmed().isEmpty())
            return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                             "@brtstr_CAudioParamRemapDef_init_InvalidRemap Invalid remapping string '%1' defined.",
                             text);
        addPair(parts[0].view().trimmed(), parts[1].view().trimmed());
    }
    return nullptr;
}

void CAudioParamRemapDef::addPair(CStringView orig, CStringView target) {
    CPair* const pair = m_pairs.append(new CPair);
    pair->orig = orig;
    pair->target = target;
}

}  // namespace brt
