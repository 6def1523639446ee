// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioProcessDefBaseInit.h"

#include "Audio/CAudioParamAllocDef.h"
#include "Audio/CAudioParamDef.h"
#include "Audio/CAudioParamFilterDef.h"
#include "Audio/CAudioParamRemapDef.h"
#include "Audio/CAudioParamSharedStorage.h"

namespace brt {
namespace {

constexpr CStringView kGroupTag = "core:object";

CString pathOf(CStringView groupPath, CStringView name) {
    CString path = groupPath;
    path += ".";
    path += name;
    return path;
}

template <class T>
void append(CAudioProcessDefBaseInit::CPlacedList<T>& list, const T& definition, CString path) {
    list.append(new CAudioProcessDefBaseInit::CPlaced<T>(definition, std::move(path)));
}

}  // namespace

CError* CAudioProcessDefBaseInit::initDone() {
    BRT_TRY(getFullName(), CObject::initDone());
    for (const CObject* const child : children()) sortChild(*child);
    return nullptr;
}

void CAudioProcessDefBaseInit::sortChild(const CObject& child) {
    if (const auto* const alloc = dynamic_cast<const CAudioParamAllocDef*>(&child)) {
        m_paramAllocs.findOrInsert(alloc->index()) = alloc;
    } else if (const auto* const remap = dynamic_cast<const CAudioParamRemapDef*>(&child)) {
        m_paramRemaps.append(remap);
    } else if (child.tag() == kGroupTag) {
        const CString groupPath = pathOf("", child.getShortName());
        for (const CObject* const member : child.children()) sortPlaced(*member, groupPath);
    } else {
        sortPlaced(child, "");
    }
}

// What stands below the process or in a group.
void CAudioProcessDefBaseInit::sortPlaced(const CObject& child, CStringView groupPath) {
    if (const auto* const storage = dynamic_cast<const CAudioParamSharedStorage*>(&child))
        append(m_sharedStorages, *storage, pathOf(groupPath, storage->param()));
    else if (const auto* const filter = dynamic_cast<const CAudioParamFilterDef*>(&child))
        append(m_paramFilters, *filter, groupPath);
    else if (const auto* const param = dynamic_cast<const CAudioParamDef*>(&child))
        append(m_params, *param, pathOf(groupPath, param->getShortName()));
}

}  // namespace brt
