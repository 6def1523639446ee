// SPDX-License-Identifier: LicenseRef-Halyard
// What a movement of a knob costs on its way to the instance and back to its windows.
#include <vector>

#include "Audio/CAudioParamCollector.h"
#include "BenchTree.h"
#include "Core/CApplication.h"
#include "Core/CError.h"
#include "Other/CAudioInterfaceClient.h"
#include "Other/CParamInterfaceBaseConnectorUni.h"
#include "Other/CParamInterfaceClientConnectorUni.h"
#include "Platform/CMessageLoop.h"
#include "Targets.h"
#include "Tools/Halyard/CToolInstance.h"

namespace {

using namespace brt;

constexpr const char* kKnob = "plugin.modMain.modHal.ingain";

const bool kTargets = bench::addTarget({"knob movement to the instance and back to 2 windows, ns", "interface/knob/2",
                                        "", bench::Target::kAtMost, 20000, 10000}) &&
                      bench::addTarget({"automation that 2 windows listen to and nobody fetches, ns",
                                        "interface/automation", "", bench::Target::kAtMost, 5000, 2500});

// A window's tree with one knob.
class BenchWindow {
public:
    explicit BenchWindow(CObject*& instanceRoot) {
        discardError(CApplication::initRootObject(m_root, ""));  // what is missing shows as a null object
        discardError(m_root->setAttrPointer("BaseConnectorRootPtr", &instanceRoot, kImmediate));
        add(m_bridge, *m_root, "ui:ui-event-bridge", "ui", "", "");
        add(m_connector, *m_bridge, "other:param-interface-client-connector-uni", "connector", "base-connector",
            "plugin.interface-base-connector");
        add(m_client, *m_bridge, "audio:interface-client", "client", "client-connector", "^connector");
        m_handle = m_client->addParamListener(kKnob, m_mirror);
        tick();
    }
    ~BenchWindow() { CObject::release(m_root); }

    void move(double value) {
        CAudioParamUpdate update;
        update.elementCount = 1;
        update.format = m_mirror.info()->format;
        update.values = &value;
        m_client->changeParam(m_handle, update, 0);
    }
    void tick() {
        m_connector->poll();
        const auto loop = CMessageLoop::current();
        while (loop->pump()) {
        }
    }
    double value() const { return m_mirror.values().value(0, 0, -1.0); }

private:
    template <class T>
    static void add(T*& object, CObject& parent, const char* tag, const char* name, const char* attribute,
                    const char* value) {
        CAttrMap attributes;
        if (*attribute != 0) attributes.findOrInsert(attribute).setText(value);
        logError(parent.createChild(object, tag, name, kTemplateOptional, nullptr, &attributes));
    }

    CObject* m_root = nullptr;
    CObject* m_bridge = nullptr;
    CParamInterfaceClientConnectorUni* m_connector = nullptr;
    CAudioInterfaceClient* m_client = nullptr;
    CParamMirror m_mirror;
    ParamHandle m_handle = 0;
};

void knob(benchmark::State& state) {
    bench::startApplication();
    CToolInstance instance;
    instance.setLayout(2, 48000.0);
    CObject* root = instance.collector().root();
    {
        BenchWindow window(root);
        BenchWindow other(root);
        double value = 0.0;
        for (auto _ : state) {
            value = value < 2.0 ? value + 0.001 : 0.5;
            window.move(value);
            window.tick();
            if (state.range(0) == 2) other.tick();
        }
        if (window.value() != value) state.SkipWithError("the movement didn't come back");
    }
}
BENCHMARK(knob)->Name("interface/knob")->Arg(1)->Arg(2);

void automation(benchmark::State& state) {
    bench::startApplication();
    CToolInstance instance;
    instance.setLayout(2, 48000.0);
    CObject* root = instance.collector().root();
    CAudioParam& param = instance.collector().getParam(kKnob);
    {
        BenchWindow window(root);
        BenchWindow other(root);
        double value = 0.0;
        for (auto _ : state) {
            value = value < 2.0 ? value + 0.001 : 0.5;
            param.setFloat(value, 0, nullptr);
        }
    }
}
BENCHMARK(automation)->Name("interface/automation");

}  // namespace
