// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CSharedParam.h"

#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamConverter.h"

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

// The store is read before the parameter is locked: it may have to read a file.
void CSharedParam::load() {
    const CAudioParamInfo* const info = m_param.info();
    if (info == nullptr) return;
    if (info->format.dataType != EAudioDataType::kRaw) return loadText(*info);
    CByteBuffer bytes;
    m_store.getData(m_dataName, bytes, appDataTag::kRecord);
    if (!bytes.isEmpty()) m_param.setRaw(0, 0, bytes, this);
}

void CSharedParam::loadText(const CAudioParamInfo& info) {
    CString text;
    m_store.getString(text, m_dataName, m_defaultText);
    if (!info.format.isFloat()) return m_param.setString(0, 0, text, this);
    if (info.converter() == nullptr) return;
    bool ok = false;
    const double value = info.converter()->parseClamped(info, 0, text, ok);
    if (ok) m_param.setFloat(value, 0, this);
}

bool CSharedParam::readValue(CString& text, CByteBuffer& bytes, EAudioDataType& type) {
    const CRankedLock lock(m_param.section());
    const CAudioParamInfo* const info = m_param.info();
    const CAudioParamStorage& control = m_param.control();
    if (info == nullptr || !control.isValid() || control.elementCount(0) == 0) return false;
    type = control.format().dataType;
    const double value = control.values(0)[0];
    if (type == EAudioDataType::kFloat) {
        if (info->converter() == nullptr) return false;
        info->converter()->format(text, *info, 0, value, control.data(), EAudioTextMode::kPlain);
    } else if (type == EAudioDataType::kString) {
        text = control.data().text(value);
    } else {
        const auto* const item = dynamic_cast<const CAudioParamDataItemRaw*>(control.data().find(value));
        if (item == nullptr) return false;
        bytes.assign(item->bytes().data(), item->bytes().size());
    }
    return true;
}

void CSharedParam::store() {
    CString text;
    CByteBuffer bytes;
    EAudioDataType type{};
    if (!readValue(text, bytes, type)) return;
    if (type == EAudioDataType::kRaw)
        m_store.setData(m_dataName, bytes, this, appDataTag::kRecord);
    else
        m_store.setString(m_dataName, text, this);
}

}  // namespace brt
