// SPDX-License-Identifier: LicenseRef-Halyard
#include "LoadedTree.h"

#include <algorithm>
#include <atomic>
#include <cstdint>

#include "Core/CApplication.h"
#include "Core/CDocumentWriter.h"
#include "Core/CError.h"
#include "Core/CObjectAddress.h"
#include "Core/CTarget.h"
#include "Core/CThread.h"
#include "Core/CUpdateListener.h"
#include "Core/CoreTags.h"
#include "Core/LittleEndian.h"
#include "Platform/CMessageLoop.h"

namespace {

using namespace brt;

// Listens to a timer, and to a notifier of its own.
class CResident : public CObject {
public:
    static void describeClass(CClassInfo& info) {
        CObject::describeClass(info);
        static constexpr CAttrInfo kAttributes[] = {attr::object("timer")};
        static constexpr CEventInfo kEvents[] = {event<&CResident::onTick>("tick"), event<&CResident::onCall>("call")};
        info.addAttributes(kAttributes);
        info.addEvents(kEvents);
    }

    ~CResident() override { m_listener.detach(); }

    CError* initDone() override {
        m_listener.attach(&m_notifier);
        m_timer.addEvent("tick", "tick");
        m_timer.init(*this, "", "", nullptr, "timer");
        return CObject::initDone();
    }

    int ticks = 0;
    int calls = 0;
    std::atomic<int> updates{0};
    CUpdateNotifier& notifier() { return m_notifier; }

private:
    CError* onTick() { return ++ticks, nullptr; }
    CError* onCall() { return ++calls, nullptr; }
    void onUpdate(const CUpdateData*) { ++updates; }

    CUpdateNotifier m_notifier;
    COwnedUpdateListener<CResident> m_listener{*this, &CResident::onUpdate};
    CTarget<CObject> m_timer;
};

// Posts to a resident and notifies its listener until it is stopped.
class CPoster : public CThread {
public:
    explicit CPoster(CResident& resident) : CThread("poster"), m_resident(resident), m_address(resident.address()) {}
    ~CPoster() override { stopThread(); }

private:
    CError* run() override {
        while (!isStopRequested()) {
            m_address->post("test", "call");
            m_resident.notifier().notify();
            yieldThread();
        }
        return nullptr;
    }

    CResident& m_resident;
    const CRef<CObjectAddress> m_address;
};

// A resource stays where it is as long as the module is loaded.
constinit std::uint8_t s_document[512] = {};

bool writeDocument() {
    CDocumentWriter writer;
    writer.beginElement("ui:ui-event-bridge", "ui");
    writer.beginElement("core:timer", "timer");
    writer.attribute("interval", "0.001");
    writer.endElement();
    writer.beginElement("test:resident", "resident");
    writer.attribute("timer", "^timer");
    writer.endElement();
    writer.endElement();
    std::vector<std::uint8_t> bytes;
    if (discardError(writer.finish(bytes)) || bytes.size() + 4 > sizeof s_document) return false;
    storeLittleEndian32(s_document, static_cast<std::uint32_t>(bytes.size()));
    std::copy(bytes.begin(), bytes.end(), s_document + 4);
    return true;
}

// An instance ends while its timer ticks, its posters post, and its loop holds what nobody will handle any more.
bool runInstance() {
    CObject* root = nullptr;
    if (discardError(CApplication::initRootObject(root, "Tree.xml"))) return false;
    CResident* resident = nullptr;
    bool isHeard = false;
    if (!discardError(root->findObjectChecked(resident, "ui.resident"))) {
        CPoster first(*resident);
        CPoster second(*resident);
        isHeard = !discardError(first.runThread()) && !discardError(second.runThread());
        const auto loop = CMessageLoop::current();
        for (int i = 0; i < 10000 && isHeard && (resident->ticks == 0 || resident->calls < 10); ++i) {
            loop->pump();
            sleepSeconds(0.0005);
        }
        isHeard = isHeard && resident->ticks > 0 && resident->calls >= 10 && resident->updates > 0;
    }
    CObject::release(root);
    return isHeard;
}

}  // namespace

bool exerciseTree() {
    static constexpr CCreatorRow kTags[] = {creatorRow<CResident>("test:resident")};
    static constexpr CResourceRow kResources[] = {{s_document, "Tree.xml"}, {nullptr, nullptr}};
    if (!writeDocument()) return false;
    const std::span<const CCreatorRow> tables[] = {coreTags(), kTags};
    CApplication::start({tables, kResources, "Tree.xml"});
    return CApplication::sharedObject() != nullptr && runInstance() && CMessageLoop::current() != nullptr;
}
