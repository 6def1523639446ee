// SPDX-License-Identifier: LicenseRef-Halyard
// Keeps one value of a parameter in a store of settings, so that all instances and later runs see it.
//
// The value of group 0, element 0 travels: numbers as the text that the converter shows, so with no more digits than a
// user sees; strings as they are; raw data as bytes. A change here is stored, and a change of the store is loaded; each
// side leaves out its own.
// Owner: the collector. Threads: any. The store is written when the thread that made the change holds no lock of ours.
#pragma once

#include "Audio/CAudioParam.h"
#include "Core/CAppDataListener.h"
#include "Core/CUpdateListener.h"

namespace brt {

class CSharedParam : public CBrtMemAllocator {
public:
    CSharedParam(CAudioParam& param, CAppData& store, CStringView dataName);
    CSharedParam(const CSharedParam&) = delete;
    CSharedParam& operator=(const CSharedParam&) = delete;

private:
    class CStoreCall;

    void onParamChanged(const CUpdateData* data);
    void onStoreChanged(const CUpdateData* data);
    // As it stands in the store.
    struct CStored {
        EAudioDataType type{};
        CString text;       // of numbers and strings
        CByteBuffer bytes;  // raw
        bool isSameAs(const CStored& other) const noexcept;
    };

    void load();
    void store();
    void readStore(CStored& stored);
    void apply(const CStored& stored);
    // False if there is nothing to store.
    bool readParam(CStored& stored);

    CAudioParam& m_param;
    CAppData& m_store;
    const CString m_dataName;
    CString m_defaultText;
    // Behind all that they use: they go first.
    COwnedUpdateListener<CSharedParam> m_paramListener{*this, &CSharedParam::onParamChanged};
    CAppDataListener<CSharedParam> m_storeListener{*this, &CSharedParam::onStoreChanged};
};

}  // namespace brt
