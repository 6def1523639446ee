// SPDX-License-Identifier: LicenseRef-Halyard
// Changes of parameters on their way to the audio thread: what the exchange of lists and the changes themselves cost
// there, with 100 parameters that move, and what a change costs the thread that makes it.
#include <chrono>
#include <deque>
#include <string>
#include <vector>

#include "Audio/CAudioParam.h"
#include "Audio/CAudioParamCollector.h"
#include "Targets.h"
#include "Tools/Halyard/CToolInstance.h"

namespace {

using namespace brt;

constexpr int kParams = 100;

const bool kTargets =
    bench::addTarget({"audio thread: taking the changes of 100 parameters, ns",
                      "params/swap/iterations:2000/manual_time", "", bench::Target::kAtMost, 2000, 200}) &&
    bench::addTarget({"audio thread: applying the changes of 100 parameters, ns",
                      "params/apply/iterations:2000/manual_time", "", bench::Target::kAtMost, 20000, 5000}) &&
    bench::addTarget(
        {"changing a parameter on another thread, ns", "params/set", "", bench::Target::kAtMost, 600, 350});

// An instance with 100 parameters of its own, each with a reader on the audio side. No audio thread runs: the benchmark
// is both sides.
class CMovingParams {
public:
    CMovingParams() {
        const double zero = 0.0;
        for (int i = 0; i < kParams; ++i) {
            CAudioParamInfo& info = m_infos.emplace_back();
            CAudioParamUpdate defaults;
            defaults.elementCount = 1;
            defaults.values = &zero;
            info.defaults.setFormat(info.format);
            info.defaults.apply(defaults);
            CAudioParam& param = collector().getParam(CString("bench.param-" + std::to_string(i)));
            param.setInfo(info, {});
            collector().addUser(param, &m_updateNeeded, &m_changedGroups, 0, CAudioParamUser::kAny);
            m_params.push_back(&param);
        }
    }
    ~CMovingParams() { m_taken.clear(); }
    CMovingParams(const CMovingParams&) = delete;
    CMovingParams& operator=(const CMovingParams&) = delete;

    void set(int index, double value) { m_params[static_cast<std::size_t>(index)]->setFloat(value, 0, this); }
    void setAll() {
        m_value += 1.0;
        for (int i = 0; i < kParams; ++i) set(i, m_value);
    }
    void take() noexcept { collector().takeUpdates(m_taken); }
    void apply() { collector().applyUpdates(m_taken); }

    // Whether the audio side has what was set last.
    bool hasArrived() const { return m_params.back()->audio().value(0, 0, -1.0) == m_value && m_updateNeeded == 1; }

private:
    CAudioParamCollector& collector() const noexcept { return m_instance.collector(); }

    std::deque<CAudioParamInfo> m_infos;
    CToolInstance m_instance;
    std::vector<CAudioParam*> m_params;
    CAudioParamQueue m_taken;
    std::uint8_t m_updateNeeded = 0;
    std::uint32_t m_changedGroups = 0;
    double m_value = 0.0;
};

template <class Operation>
void addTime(benchmark::State& state, const Operation& operation) {
    const auto begin = std::chrono::steady_clock::now();
    operation();
    state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
}

void checkArrival(benchmark::State& state, const CMovingParams& params) {
    if (!params.hasArrived()) state.SkipWithError("the changes have not arrived");
}

// A fixed number of times: what is measured takes nanoseconds, what lies between takes microseconds. Each time 100
// changes are taken, and 100 that have been applied are handed back.
void swap(benchmark::State& state) {
    CMovingParams params;
    for (auto _ : state) {
        params.setAll();
        addTime(state, [&] { params.take(); });
        params.apply();
    }
    checkArrival(state, params);
}
BENCHMARK(swap)->Name("params/swap")->UseManualTime()->Iterations(2000);

void apply(benchmark::State& state) {
    CMovingParams params;
    for (auto _ : state) {
        params.setAll();
        params.take();
        addTime(state, [&] { params.apply(); });
    }
    checkArrival(state, params);
}
BENCHMARK(apply)->Name("params/apply")->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(2000);

// One item is one change. The audio side takes them between, so that the writer frees what it has handed back.
void set(benchmark::State& state) {
    CMovingParams params;
    params.setAll();
    params.take();
    params.apply();  // the definitions too
    for (auto _ : state) {
        params.setAll();
        params.take();
    }
    params.apply();
    checkArrival(state, params);
    state.SetItemsProcessed(state.iterations() * kParams);
}
BENCHMARK(set)->Name("params/set");

}  // namespace
