// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioExtParam.h"

#include <algorithm>
#include <cmath>

#include "Audio/CAudioExtParamHostBridge.h"
#include "Audio/CAudioParamConverter.h"
#include "Core/CClassInfo.h"
#include "Core/CError.h"

namespace brt {

void CAudioExtParam::describeClass(CClassInfo& info) {
    CObject::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::object("param-collector").required().help("owns the parameter"),
        attr::text("ext-name").required().help("for the host, 1 to 7 characters"),
        attr::integer("element-index").between(0, kAudioElementLimit - 1).byDefault("0").help("of the value"),
        attr::integer("group").between(0, kAudioGroupLimit - 1).byDefault("0").help("channel group of the value"),
        attr::text("param-name").required().help("full name of the parameter"),
    };
    info.addAttributes(kAttributes);
}

CAudioExtParam::~CAudioExtParam() { CUpdateListener::detach(); }

CError* CAudioExtParam::init() {
    BRT_TRY(getFullName(), CObject::init());
    BRT_TRY(getFullName(), findObjectByAttr("param-collector", m_collector));
    m_extName = getAttrString("ext-name");
    if (m_extName.isEmpty() || m_extName.length() > kLongestName)
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CAudioExtParam_attrExtName_LongName Externalized parameter name '%1' is too long",
                         m_extName);
    m_element = getAttrInt("element-index");
    m_group = getAttrInt("group");
    m_param = &m_collector->getParam(getAttrString("param-name"));
    attach(m_collector, CUpdateFilter(m_param));
    const CRankedLock lock(m_param->section());
    refresh();
    return nullptr;
}

void CAudioExtParam::setHostBridge(CAudioExtParamHostBridge* bridge, int index) {
    m_hostIndex.store(index, std::memory_order_relaxed);
    m_bridge.store(bridge, std::memory_order_release);
}

void CAudioExtParam::update(const CUpdateData* data) {
    if (concerns(static_cast<const CAudioParamUpdateData&>(*data))) refresh();
}

bool CAudioExtParam::concerns(const CAudioParamUpdateData& data) const noexcept {
    const CAudioParamUpdate& change = data.update;
    if (change.group == kWholeParam) return true;
    return change.source != this && change.group == m_group && m_element >= change.firstElement &&
           (change.isSetCount || m_element < change.endElement());
}

// Under the parameter's lock.
void CAudioExtParam::refresh() {
    const CAudioParamInfo* const info = m_param->info();
    if (info == nullptr || info->converter() == nullptr) return;
    const double value = m_param->control().value(m_group, m_element, 0.0);
    // A value outside the range, which nobody clamps on its way, has no place on a host's scale.
    const double mapped = info->converter()->internalToNormal(*info, 0, value);
    const double normal = std::isnan(mapped) ? 0.0 : std::clamp(mapped, 0.0, 1.0);
    m_normal.store(normal, std::memory_order_release);
    CAudioExtParamHostBridge* const bridge = m_bridge.load(std::memory_order_acquire);
    if (bridge != nullptr)
        CHostCall::defer(*bridge, CHostCall::EKind::kAutomate, m_hostIndex.load(std::memory_order_relaxed), normal);
}

CStringView CAudioExtParam::getLabel() const {
    const CAudioParamInfo* const info = m_param->info();
    return info != nullptr && info->converter() != nullptr ? info->converter()->label().view() : CStringView();
}

void CAudioExtParam::setNormal(double value) {
    if (!std::isfinite(value)) return;
    const double limited = std::clamp(value, 0.0, 1.0);
    const CRankedLock lock(m_param->section());
    if (static_cast<float>(limited) == static_cast<float>(getNormal())) return;
    m_normal.store(limited, std::memory_order_release);
    const CAudioParamInfo* const info = m_param->info();
    if (info == nullptr || info->converter() == nullptr) return;
    m_param->setFloatAt(m_group, m_element, info->converter()->normalToInternal(*info, 0, limited), this);
}

CString CAudioExtParam::normalToText(double value) const {
    CString text;
    const CAudioParamInfo* const info = m_param->info();
    if (info == nullptr || info->converter() == nullptr) return text;
    const double limited = std::isfinite(value) ? std::clamp(value, 0.0, 1.0) : 0.0;
    const CRankedLock lock(m_param->section());
    info->converter()->format(text, *info, 0, info->converter()->normalToInternal(*info, 0, limited),
                              m_param->control().data(), EAudioTextMode::kMedium);
    return text;
}

double CAudioExtParam::textToNormal(CStringView text) const {
    const CAudioParamInfo* const info = m_param->info();
    if (info == nullptr || info->converter() == nullptr) return 0.5;
    bool ok = false;
    double value = info->converter()->parseClamped(*info, 0, text, ok);
    const CRankedLock lock(m_param->section());
    if (!ok && m_param->control().isValid()) value = m_param->control().defaultValue(m_element);
    return info->converter()->internalToNormal(*info, 0, value);
}

}  // namespace brt
