// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CSharedAttribute.h"

#include "Core/CClassInfo.h"

namespace brt {

void CSharedAttribute::describeClass(CClassInfo& info) {
    CObject::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::word("storage-type", "local group global").required().help("the store that has the setting"),
        attr::attrNames("attribute").required().help("the attribute of this object that shows the setting"),
        attr::text("data-name").help("the key of the setting; this object's short name if it is empty"),
        attr::text("def-value").help("what the attribute is if the store has nothing"),
    };
    static constexpr CEventInfo kEvents[] = {
        event<&CSharedAttribute::onUpdate>("update", "reads the setting again"),
    };
    info.addAttributes(kAttributes);
    info.addEvents(kEvents);
}

CSharedAttribute::~CSharedAttribute() { m_listener.detach(); }

CError* CSharedAttribute::init() {
    BRT_TRY(getFullName(), CObject::init());
    const CStringView storageType = getAttrString("storage-type");
    m_store = CAppData::find(storageType);
    if (!m_store)
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CSharedAttribute_init_InvalidStorageType Invalid storage type \"%1\" specified.",
                         storageType);
    m_attributeName = getAttrString("attribute");
    if (m_attributeName.isEmpty())
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CSharedAttribute_init_NoAttribute No attached attribute name specified.");
    m_key = getAttrString("data-name");
    if (m_key.isEmpty()) m_key = getShortName();
    m_defaultValue = getAttrString("def-value");

    m_address = address();
    m_listener.listen(*m_store, m_key);
    BRT_TRY(getFullName(), loadValue());
    return nullptr;
}

void CSharedAttribute::setValue(const CString& text) {
    if (m_store) m_store->setString(m_key, text, this);
}

// On the thread that made the change; nothing of the object is read but the address.
void CSharedAttribute::postUpdate(const CUpdateData*) { m_address->post(m_address->fullName(), "update"); }

CError* CSharedAttribute::onUpdate() { return loadValue(); }

// A setting is a user's text: braces in it are plain characters. An object whose `init` has failed has no store, and
// may be told to read it all the same.
CError* CSharedAttribute::loadValue() {
    if (!m_store) return nullptr;
    CString value;
    m_store->getString(value, m_key, m_defaultValue);
    BRT_TRY(getFullName(), setAttrRaw(m_attributeName, value, kImmediate));
    return nullptr;
}

}  // namespace brt
