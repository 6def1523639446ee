// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioInterfaceBase.h"

#include "Audio/CAudioInterfaceDataProvider.h"
#include "Audio/CAudioVizCollector.h"
#include "Core/CClassInfo.h"
#include "Core/CError.h"
#include "Core/CUpdateListener.h"

namespace brt {
namespace {

constexpr int kThisInstance = -1;  // in place of an export slot
constexpr double kDefaultSampleRate = 44100.0;

}  // namespace

// A display that a client shows.
struct CAudioInterfaceBase::CVizListener : CBrtMemAllocator {
    int exportSlot = kThisInstance;
    CString name;             // of the process
    VizSlot* slot = nullptr;  // null for one of another instance
};

// Tells all clients of other instances that show themselves.
class CAudioInterfaceBase::CExportSlotNameListener final : public CUpdateListener, public CBrtMemAllocator {
public:
    explicit CExportSlotNameListener(CAudioInterfaceBase& base) : m_base(base) {}
    ~CExportSlotNameListener() override { detach(); }

    void update(const CUpdateData*) override { m_base.sendExportSlotNames(); }

private:
    CAudioInterfaceBase& m_base;
};

void CAudioInterfaceBase::describeClass(CClassInfo& info) {
    CParamInterfaceBase::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::object("viz-collector").required().ofClass<CAudioVizCollector>().help("has what displays show"),
    };
    using T = CAudioInterfaceBase;
    static constexpr CEventInfo kEvents[] = {
        event<&T::onListenViz>(toBase::kListenViz),
        event<&T::onUnlistenViz>(toBase::kUnlistenViz),
        event<&T::onRequestVizData>(toBase::kRequestVizData),
        event<&T::onRequestExportSlotNames>(toBase::kRequestExportSlotNames),
        event<&T::onRequestInternalChannelCount>(toBase::kRequestInternalChannelCount),
        event<&T::onRequestGroupCount>(toBase::kRequestGroupCount),
        event<&T::onRequestIoChannelCounts>(toBase::kRequestIoChannelCounts),
        event<&T::onRequestSampleRate>(toBase::kRequestSampleRate),
        event<&T::onImportChannelLabels>(toBase::kImportChannelLabels),
    };
    info.addAttributes(kAttributes);
    info.addEvents(kEvents);
}

CAudioInterfaceBase::CAudioInterfaceBase() = default;
CAudioInterfaceBase::~CAudioInterfaceBase() = default;

CError* CAudioInterfaceBase::init() {
    BRT_TRY(getFullName(), CParamInterfaceBase::init());
    BRT_TRY(getFullName(), findObjectByAttr("viz-collector", m_vizCollector));
    m_exportSlotNames = std::make_unique<CExportSlotNameListener>(*this);
    m_exportSlotNames->attach(m_vizCollector);
    return nullptr;
}

void CAudioInterfaceBase::releaseLinks() {
    m_exportSlotNames.reset();
    {
        const CRankedLock lock(messageSection());
        for (const auto& [handle, listener] : m_vizListeners) removeVizListener(*listener);
        m_vizListeners.clear();
    }
    CParamInterfaceBase::releaseLinks();
}

void CAudioInterfaceBase::onClientGone(int clientId) {
    const CRankedLock lock(messageSection());
    for (auto place = m_vizListeners.lowerBound(makeHandle(clientId, 0)); place && clientOf(place->key) == clientId;
         place = m_vizListeners.erase(place))
        removeVizListener(*place->value);
    CParamInterfaceBase::onClientGone(clientId);
}

void CAudioInterfaceBase::setDataProvider(CAudioInterfaceDataProvider* provider) {
    m_provider.store(provider, std::memory_order_release);
}

bool CAudioInterfaceBase::beginEdit(CAudioParam& param, int element, int group) {
    CAudioInterfaceDataProvider* const host = provider();
    return host != nullptr && host->beginEdit(param, element, group);
}

void CAudioInterfaceBase::endEdit(CAudioParam& param, int element, int group) {
    CAudioInterfaceDataProvider* const host = provider();
    if (host != nullptr) host->endEdit(param, element, group);
}

CError* CAudioInterfaceBase::onImportChannelLabels() {
    CAudioInterfaceDataProvider* const host = provider();
    if (host != nullptr) host->importChannelLabels();
    return nullptr;
}

// What the instance tells of itself.

void CAudioInterfaceBase::sendWord(CStringView name, EInstanceState state) {
    CParamMessage message(name);
    sendOrLog(kAllClients, message, CPacketTopic::ofInstance(state));
}

void CAudioInterfaceBase::sendInternalChannelCount(int clientId) {
    const CAudioInterfaceDataProvider* const host = provider();
    CParamMessage message(toClient::kUpdateInternalChannelCount, host != nullptr ? host->internalChannelCount() : 1);
    sendOrLog(clientId, message, CPacketTopic::ofInstance(EInstanceState::kInternalChannelCount));
}

void CAudioInterfaceBase::sendGroupCount(int clientId) {
    const CAudioInterfaceDataProvider* const host = provider();
    CParamMessage message(toClient::kUpdateGroupCount, host != nullptr ? host->groupCount() : 1);
    sendOrLog(clientId, message, CPacketTopic::ofInstance(EInstanceState::kGroupCount));
}

void CAudioInterfaceBase::sendIoChannelCounts(int clientId) {
    const CAudioInterfaceDataProvider* const host = provider();
    CParamMessage message(toClient::kUpdateIoChannelCounts, host != nullptr ? host->inputChannelCount() : 1,
                          host != nullptr ? host->outputChannelCount() : 1,
                          host != nullptr ? host->sidechainChannelCount() : 0);
    sendOrLog(clientId, message, CPacketTopic::ofInstance(EInstanceState::kIoChannelCounts));
}

void CAudioInterfaceBase::sendSampleRate(int clientId) {
    const CAudioInterfaceDataProvider* const host = provider();
    CParamMessage message(toClient::kUpdateSampleRate, host != nullptr ? host->sampleRate() : kDefaultSampleRate);
    sendOrLog(clientId, message, CPacketTopic::ofInstance(EInstanceState::kSampleRate));
}

// No instance shows itself to others: the list is empty.
void CAudioInterfaceBase::sendExportSlotNames(int clientId) {
    constexpr std::uint32_t kCount = 0;
    CParamMessage message(toClient::kExportSlotNames, kCount);
    sendOrLog(clientId, message, CPacketTopic::ofInstance(EInstanceState::kExportSlotNames));
}

CError* CAudioInterfaceBase::answer(CSend sendAnswer) {
    std::int32_t clientId = 0;
    BRT_TRY(getFullName(), readFields(message(), clientId));
    (this->*sendAnswer)(clientId);
    return nullptr;
}

CError* CAudioInterfaceBase::onRequestInternalChannelCount() {
    return answer(&CAudioInterfaceBase::sendInternalChannelCount);
}
CError* CAudioInterfaceBase::onRequestGroupCount() { return answer(&CAudioInterfaceBase::sendGroupCount); }
CError* CAudioInterfaceBase::onRequestIoChannelCounts() { return answer(&CAudioInterfaceBase::sendIoChannelCounts); }
CError* CAudioInterfaceBase::onRequestSampleRate() { return answer(&CAudioInterfaceBase::sendSampleRate); }
CError* CAudioInterfaceBase::onRequestExportSlotNames() { return answer(&CAudioInterfaceBase::sendExportSlotNames); }

// Displays.

CError* CAudioInterfaceBase::onListenViz() {
    std::int32_t exportSlot = kThisInstance;
    CString name;
    ParamHandle handle = 0;
    BRT_TRY(getFullName(), readFields(message(), exportSlot, name, handle));
    if (!isUsable(handle) || m_vizListeners.contains(handle)) return nullptr;
    auto listener = std::make_unique<CVizListener>();
    listener->exportSlot = exportSlot;
    listener->name = name;
    if (exportSlot == kThisInstance) {
        listener->slot = &m_vizCollector->getSlot(name);
        m_vizCollector->addListener(*listener->slot);
    }
    m_vizListeners.findOrInsert(handle) = std::move(listener);
    return nullptr;
}

CError* CAudioInterfaceBase::onUnlistenViz() {
    ParamHandle handle = 0;
    BRT_TRY(getFullName(), readFields(message(), handle));
    const auto place = m_vizListeners.locate(handle);
    if (!place) return nullptr;
    removeVizListener(*place->value);
    m_vizListeners.erase(place);
    return nullptr;
}

void CAudioInterfaceBase::removeVizListener(const CVizListener& listener) {
    if (listener.slot != nullptr) m_vizCollector->removeListener(*listener.slot);
}

CError* CAudioInterfaceBase::onRequestVizData() {
    std::int32_t clientId = 0;
    double framesPerSecond = 0.0;
    BRT_TRY(getFullName(), readFields(message(), clientId, framesPerSecond));
    CParamMessage answer(toClient::kVizData);
    BRT_TRY(getFullName(), m_vizCollector->collect(answer.stream(), framesPerSecond));
    return send(clientId, answer);
}

}  // namespace brt
