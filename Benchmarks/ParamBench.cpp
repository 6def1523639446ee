// SPDX-License-Identifier: LicenseRef-Halyard
// Values of parameters: what a module pays to read one, and a control to move and show one.
#include <array>

#include "Audio/CAudioParamConverter.h"
#include "Audio/CAudioParamStorage.h"
#include "Audio/CAudioParamUpdate.h"
#include "BenchTree.h"
#include "Targets.h"

namespace {

using namespace brt;

const bool kTargets =
    bench::addTarget({"parameter read on the audio side, ns", "param/value", "", bench::Target::kAtMost, 2, 1.2}) &&
    bench::addTarget({"normalised value of a gain to its factor, ns", "param/normal-to-internal/gain", "",
                      bench::Target::kAtMost, 40, 20}) &&
    bench::addTarget({"gain as text, ns", "param/format/gain", "", bench::Target::kAtMost, 120, 80});

// A parameter of all eight groups, of which the first four are set, for four elements each.
class CBenchStorage {
public:
    CBenchStorage() {
        constexpr double kValues[] = {1, 2, 3, 4};
        CAudioParamUpdate update;
        update.elementCount = 4;
        update.values = kValues;
        update.group = kWholeParam;
        m_storage.apply(update);
        for (update.group = 0; update.group < 4; ++update.group) m_storage.apply(update);
    }
    const CAudioParamStorage& get() const { return m_storage; }

private:
    CAudioParamStorage m_storage;
};

// As modules read: by indices that the compiler can't know, set and unset places in turn.
void value(benchmark::State& state) {
    const CBenchStorage storage;
    const CAudioParamStorage* place = &storage.get();
    benchmark::DoNotOptimize(place);
    for (auto _ : state) {
        double sum = 0.0;
        for (int group = 0; group < 8; ++group)
            for (int element = 0; element < 8; ++element) sum += place->value(group, element, 0.0);
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * 64);
}
BENCHMARK(value)->Name("param/value");

// A range for one of the product's converters.
class CBenchParam {
public:
    CBenchParam(const char* converter, double minimum, double maximum) {
        bench::startApplication();
        const CString path = CString("audio.paramcvt.").append(converter);
        m_info.converters.append(dynamic_cast<CAudioParamConverter*>(CApplication::sharedObject()->findObject(path)));
        m_info.minValues.append(minimum);
        m_info.maxValues.append(maximum);
    }

    bool isUsable() const { return m_info.converter() != nullptr; }
    const CAudioParamInfo& info() const { return m_info; }

private:
    CAudioParamInfo m_info;
};

void normalToInternal(benchmark::State& state, const char* converter, double minimum, double maximum) {
    const CBenchParam param(converter, minimum, maximum);
    if (!param.isUsable()) return state.SkipWithError("no converter");
    int step = 0;
    for (auto _ : state) {
        step = (step + 1) & 1023;
        benchmark::DoNotOptimize(param.info().converter()->normalToInternal(param.info(), 0, step / 1023.0));
    }
}
BENCHMARK_CAPTURE(normalToInternal, gain, "gain", 1.0, 16.0)->Name("param/normal-to-internal/gain");
BENCHMARK_CAPTURE(normalToInternal, time, "time", 0.0, 5.0)->Name("param/normal-to-internal/time");

void format(benchmark::State& state, const char* converter, double minimum, double maximum) {
    const CBenchParam param(converter, minimum, maximum);
    if (!param.isUsable()) return state.SkipWithError("no converter");
    std::array<double, 256> values{};
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = minimum + (maximum - minimum) * static_cast<double>(i) / 255.0;
    const CAudioParamData none;
    CString text;
    std::size_t step = 0;
    for (auto _ : state) {
        step = (step + 1) % values.size();
        param.info().converter()->format(text, param.info(), 0, values[step], none, EAudioTextMode::kMedium);
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK_CAPTURE(format, gain, "gain", 1.0, 16.0)->Name("param/format/gain");
BENCHMARK_CAPTURE(format, time, "time", 0.0, 5.0)->Name("param/format/time");
BENCHMARK_CAPTURE(format, enum, "enum-enable", 0.0, 1.0)->Name("param/format/enum");

}  // namespace
