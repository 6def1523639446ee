// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioParamSharedStorage.h"

#include "Core/CAppData.h"
#include "Core/CClassInfo.h"
#include "Core/CError.h"

namespace brt {

void CAudioParamSharedStorage::describeClass(CClassInfo& info) {
    CObject::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::text("param").required().help("short name of a parameter that is declared beside this"),
        attr::text("data-name").required().help("key of the value in the store"),
        attr::word("storage-type", "local group global").required().help("the store that has the value"),
    };
    info.addAttributes(kAttributes);
}

CError* CAudioParamSharedStorage::init() {
    BRT_TRY(getFullName(), CObject::init());
    m_param = getAttrString("param");
    if (m_param.isEmpty())
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CAudioParamSharedStorage_init_InvalidParamName Invalid parameter name specified.");
    m_dataName = getAttrString("data-name");
    if (m_dataName.isEmpty())
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CAudioParamSharedStorage_init_InvalidDataName Invalid shared data name specified.");
    const CStringView storageType = getAttrString("storage-type");
    m_store = CAppData::find(storageType);
    if (!m_store)
        return makeError(
            nullptr, __FILE__, __LINE__, getFullName(),
            "@brtstr_CAudioParamSharedStorage_init_InvalidStorageType Invalid storage type \"%1\" specified.",
            storageType);
    return nullptr;
}

}  // namespace brt
