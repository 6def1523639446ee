// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CSharedParam.h"

#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamConverter.h"

#include <algorithm>

namespace brt {

// Writes the store, which is a file, and tells other instances: under no lock.
class CSharedParam::CStoreCall final : public CDeferredCall {
public:
    explicit CStoreCall(CSharedParam& shared) noexcept : m_shared(shared) {}
    void run() override { m_shared.store(); }
    bool absorb(const CDeferredCall& later) override {
        const auto* const call = dynamic_cast<const CStoreCall*>(&later);
        return call != nullptr && &call->m_shared == &m_shared;
    }

private:
    CSharedParam& m_shared;
};

CSharedParam::CSharedParam(CAudioParam& param, CAppData& store, CStringView dataName)
    : m_param(param), m_store(store), m_dataName(dataName) {
    const CDeferralScope scope;
    {
        const CRankedLock lock(param.section());
        const CAudioParamStorage& control = param.control();
        const CAudioParamInfo* const info = param.info();
        if (info != nullptr && control.isValid()) {
            if (info->format.isFloat() && info->converter() != nullptr)
                info->converter()->format(m_defaultText, *info, 0, control.defaultValue(0), control.data(),
                                          EAudioTextMode::kPlain);
            else
                m_defaultText = control.data().text(control.defaultValue(0));
        }
    }
    // First listen, then load: so no change between the two is missed.
    m_paramListener.attach(&param.collector(), CUpdateFilter(&param));
    m_storeListener.listen(store, m_dataName);
    load();
}

void CSharedParam::onStoreChanged(const CUpdateData* data) {
    if (data->sender != this) load();
}

void CSharedParam::onParamChanged(const CUpdateData* data) {
    if (data->sender != this) deferCall(std::unique_ptr<CDeferredCall>(new CStoreCall(*this)));
}

// While this loads, another thread may change the parameter or the store. So whoever has written one side looks at the
// other again: of two that meet, at least one sees what the other has done, and repeats.
void CSharedParam::load() {
    CStored stored[2];
    readStore(stored[0]);
    for (int i = 0;; i ^= 1) {
        apply(stored[i]);
        readStore(stored[i ^ 1]);
        if (stored[0].isSameAs(stored[1])) return;
    }
}

void CSharedParam::store() {
    CStored values[2];
    if (!readParam(values[0])) return;
    for (int i = 0;; i ^= 1) {
        if (values[i].type == EAudioDataType::kRaw)
            m_store.setData(m_dataName, values[i].bytes, this, appDataTag::kRecord);
        else
            m_store.setString(m_dataName, values[i].text, this);
        if (!readParam(values[i ^ 1]) || values[0].isSameAs(values[1])) return;
    }
}

bool CSharedParam::CStored::isSameAs(const CStored& other) const noexcept {
    return type == other.type && text == other.text && bytes.size() == other.bytes.size() &&
           std::equal(bytes.data(), bytes.data() + bytes.size(), other.bytes.data());
}

// Under no lock: it may have to read a file.
void CSharedParam::readStore(CStored& stored) {
    const CAudioParamInfo* const info = m_param.info();
    if (info == nullptr) return;
    stored.type = info->format.dataType;
    if (stored.type == EAudioDataType::kRaw)
        m_store.getData(m_dataName, stored.bytes, appDataTag::kRecord);
    else
        m_store.getString(stored.text, m_dataName, m_defaultText);
}

void CSharedParam::apply(const CStored& stored) {
    const CAudioParamInfo* const info = m_param.info();
    if (info == nullptr) return;
    if (stored.type == EAudioDataType::kString) return m_param.setString(0, 0, stored.text, this);
    if (stored.type == EAudioDataType::kRaw) {
        if (!stored.bytes.isEmpty()) m_param.setRaw(0, 0, stored.bytes, this);
        return;
    }
    if (info->converter() == nullptr) return;
    bool ok = false;
    const double value = info->converter()->parseClamped(*info, 0, stored.text, ok);
    if (ok) m_param.setFloat(value, 0, this);
}

bool CSharedParam::readParam(CStored& stored) {
    const CRankedLock lock(m_param.section());
    const CAudioParamInfo* const info = m_param.info();
    const CAudioParamStorage& control = m_param.control();
    if (info == nullptr || !control.isValid() || control.elementCount(0) == 0) return false;
    stored.type = control.format().dataType;
    const double value = control.values(0)[0];
    if (stored.type == EAudioDataType::kFloat) {
        if (info->converter() == nullptr) return false;
        info->converter()->format(stored.text, *info, 0, value, control.data(), EAudioTextMode::kPlain);
    } else if (stored.type == EAudioDataType::kString) {
        stored.text = control.data().text(value);
    } else {
        const auto* const item = dynamic_cast<const CAudioParamDataItemRaw*>(control.data().find(value));
        if (item == nullptr) return false;
        stored.bytes.assign(item->bytes().data(), item->bytes().size());
    }
    return true;
}

}  // namespace brt
