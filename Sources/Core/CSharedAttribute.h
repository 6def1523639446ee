// SPDX-License-Identifier: LicenseRef-Halyard
// Brings one setting of a store into the tree, as an attribute of this object: those that refer to it, as in
// "{*/ui.global-data.tablet-mode tablet-mode}", follow the setting.
//
//     <core:shared-attribute name="tablet-mode" storage-type="global" attribute="tablet-mode" def-value="false"/>
//
// The attribute is set at `init`, and again, on the thread of the tree, after each change that any instance of the
// process has made. Without a bridge above it keeps what it had at `init`.
// Owner and threads: as for any object, but for `setValue`.
#pragma once

#include "Core/CAppDataListener.h"
#include "Core/CObject.h"
#include "Core/CObjectAddress.h"

namespace brt {

class CSharedAttribute;
using CSharedAttributeListener = CAppDataListener<CSharedAttribute>;

class CSharedAttribute : public CObject {
public:
    static void describeClass(CClassInfo& info);

    CSharedAttribute() = default;
    ~CSharedAttribute() override;

    [[nodiscard]] CError* init() override;

    // Changes the setting. The attribute follows when the tree's thread is told. Before `init` nothing happens.
    void setValue(const CString& text);

    const CString& key() const noexcept { return m_key; }

private:
    CError* onUpdate();
    void postUpdate(const CUpdateData* data);
    CError* loadValue();

    CAppData* m_store = nullptr;  // not owned
    CString m_attributeName;
    CString m_key;
    CString m_defaultValue;
    CRef<CObjectAddress> m_address;  // all that the listener uses; set before it listens
    CSharedAttributeListener m_listener{*this, &CSharedAttribute::postUpdate};
};

}  // namespace brt
