// SPDX-License-Identifier: LicenseRef-Halyard
// What activating a preset with every parameter of the product, its undo, a change of program and one of A/B cost the
// thread that asks for it.
#include "Audio/CAudioInterfaceBase.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamRegistry.h"
#include "Core/CError.h"
#include "Core/CMemoryReader.h"
#include "Core/CWriteSeqBuffer.h"
#include "Targets.h"
#include "Tools/Halyard/CToolInstance.h"

namespace {

using namespace brt;

const bool kTargets =
    bench::addTarget({"activating a preset with every parameter of the product, ns", "preset/activate", "",
                      bench::Target::kAtMost, 1000000, 200000}) &&
    bench::addTarget({"undo of that and redo, ns", "preset/undo", "", bench::Target::kAtMost, 1000000, 200000}) &&
    bench::addTarget({"change of program, ns", "preset/program", "", bench::Target::kAtMost, 1000000, 300000}) &&
    bench::addTarget({"change of the side of A/B, ns", "preset/exchange", "", bench::Target::kAtMost, 1000000, 300000});

// An instance that is ready to run. No audio thread does: the benchmark is both sides.
class BenchPrograms {
public:
    BenchPrograms() {
        m_instance.setLayout(8, 48000.0, 2);
        CObject& root = *m_instance.collector().root();
        logError(root.findObjectChecked(m_registry, "plugin.param-registry"));
        logError(root.findObjectChecked(m_base, "plugin.interface-base"));
        for (CByteBuffer& preset : m_presets) {
            CWriteSeqBuffer stream(CWriteSeqBuffer::kStateBlockBytes);
            logError(m_registry->acquirePreset(false, CAudioParamRegistry::kCurrent, -1, stream));
            stream.moveTo(preset);
            m_instance.set("plugin.modMain.modHal.ingain", 2.0);
        }
        take();
    }
    ~BenchPrograms() { m_taken.clear(); }
    BenchPrograms(const BenchPrograms&) = delete;
    BenchPrograms& operator=(const BenchPrograms&) = delete;

    CAudioParamRegistry& registry() { return *m_registry; }
    CAudioInterfaceBase& base() { return *m_base; }
    void activate(int which) {
        const CByteBuffer& preset = m_presets[which];
        CMemoryReader stream(preset.data(), preset.size());
        logError(m_registry->activatePreset(stream, false, -1));
    }
    // What the audio thread does where a block begins. Gives the number of changes.
    int take() {
        m_instance.collector().takeUpdates(m_taken);
        m_instance.collector().applyUpdates(m_taken);
        return m_taken.count();
    }
    double gain() { return m_instance.get("plugin.modMain.modHal.ingain"); }

private:
    CToolInstance m_instance;
    CAudioParamRegistry* m_registry = nullptr;
    CAudioInterfaceBase* m_base = nullptr;
    CByteBuffer m_presets[2];
    CAudioParamQueue m_taken;
};

// Runs `step` with 0 and 1 in turns; the audio side takes what comes outside the time that counts.
template <class Step>
void run(benchmark::State& state, BenchPrograms& programs, Step step) {
    int turn = 0;
    int changes = 0;
    for (auto _ : state) {
        turn = 1 - turn;
        step(turn);
        state.PauseTiming();
        changes = programs.take();
        state.ResumeTiming();
    }
    state.counters["changes"] = changes;
}

void activate(benchmark::State& state) {
    BenchPrograms programs;
    run(state, programs, [&](int turn) { programs.activate(turn); });
    programs.activate(1);
    if (programs.gain() != 2.0) state.SkipWithError("the preset hasn't arrived");
}
BENCHMARK(activate)->Name("preset/activate");

void undo(benchmark::State& state) {
    BenchPrograms programs;
    programs.activate(1);
    run(state, programs, [&](int turn) { programs.base().setHistoryPos(1 - turn, false); });
    programs.base().setHistoryPos(1, false);
    if (programs.gain() != 2.0) state.SkipWithError("the step hasn't come back");
}
BENCHMARK(undo)->Name("preset/undo");

void program(benchmark::State& state) {
    BenchPrograms programs;
    if (programs.registry().getProgramCount() < 2) return state.SkipWithError("there are no programs");
    run(state, programs, [&](int turn) { programs.registry().setCurrentProgram(turn, nullptr); });
}
BENCHMARK(program)->Name("preset/program");

void exchange(benchmark::State& state) {
    BenchPrograms programs;
    programs.activate(0);
    programs.registry().updateShadowPreset();
    programs.activate(1);
    run(state, programs, [&](int) { programs.registry().exchangeShadowPreset(); });
}
BENCHMARK(exchange)->Name("preset/exchange");

}  // namespace
