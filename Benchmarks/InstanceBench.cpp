// SPDX-License-Identifier: LicenseRef-Halyard
// What an instance costs a host: time to start, memory, and what it adds to its graph in a block.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <vector>

#include "Audio/Wrapper/CAudioWrapper.h"
#include "BenchTree.h"
#include "Core/CError.h"
#include "Targets.h"

namespace {

using Clock = std::chrono::steady_clock;

// A host that isn't interested in anything.
class BenchInstance final : public brt::CAudioWrapper {
public:
    BenchInstance() {
        if (brt::CError* const error = init()) {
            const std::string message = error->message().toUtf8();
            brt::discardError(error);  // told by the exception
            throw std::runtime_error(message);
        }
        brt::CStringList names;
        names.append("L"), names.append("R");
        setHostChannels(2, names);
        updateDefaultRouting(true);
        initConnections();
    }

    void hostAutomate(int, double) override {}
    void hostUpdateDisplay() override {}
    void hostBeginEdit(int) override {}
    void hostEndEdit(int) override {}

    void resume(int channelCount) {
        setEnvSampleRate(48000.0);
        setInputFormat({channelCount, false, false});
        setOutputFormat({channelCount, false, false});
        activate();
    }
};

double secondsSince(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

long residentBytes() {
    long total = 0;
    long resident = 0;
    std::FILE* const file = std::fopen("/proc/self/statm", "r");
    if (file != nullptr && std::fscanf(file, "%ld %ld", &total, &resident) != 2) resident = 0;
    if (file != nullptr) std::fclose(file);
    return resident * sysconf(_SC_PAGESIZE);
}

// With everything that a process has once: the shared document, the transforms, the filters. So the figure is that of
// the benchmark that starts the application, which in a run of all of them is another one.
double firstInstanceSeconds() {
    static const double s_seconds = [] {
        if (brt::CApplication::sharedObject() != nullptr) return 0.0;
        const Clock::time_point start = Clock::now();
        bench::startApplication();
        const BenchInstance instance;
        return secondsSince(start);
    }();
    return s_seconds;
}

void instanceFirst(benchmark::State& state) {
    const double seconds = firstInstanceSeconds();
    if (seconds == 0.0) return state.SkipWithError("has to run first: --benchmark_filter=instance");
    for (auto _ : state) state.SetIterationTime(seconds);
}
BENCHMARK(instanceFirst)->Name("instance/first")->Iterations(1)->UseManualTime();

void instanceNext(benchmark::State& state) {
    firstInstanceSeconds();
    bench::startApplication();
    const BenchInstance other;
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        auto instance = std::make_unique<BenchInstance>();
        state.SetIterationTime(secondsSince(start));
    }
}
BENCHMARK(instanceNext)->Name("instance/next")->UseManualTime();

// What a further instance holds once it has played, the clippers' own buffers included; of a process that has freed
// nothing yet.
double instanceMegabytes() {
    constexpr int kInstances = 16;
    constexpr int kFrames = 512;
    std::vector<float> samples(kFrames * 2);
    const void* const inputs[] = {samples.data(), samples.data() + kFrames};
    void* const outputs[] = {samples.data(), samples.data() + kFrames};
    std::vector<std::unique_ptr<BenchInstance>> instances;
    const auto add = [&] {
        instances.push_back(std::make_unique<BenchInstance>());
        instances.back()->resume(2);
        for (int block = 0; block < 8; ++block) instances.back()->process(inputs, outputs, kFrames);
    };
    add();
    const long before = residentBytes();
    for (int i = 0; i < kInstances; ++i) add();
    return static_cast<double>(residentBytes() - before) / kInstances / 1e6;
}

void instanceMemory(benchmark::State& state) {
    firstInstanceSeconds();
    bench::startApplication();
    static const double s_megabytes = instanceMegabytes();
    for (auto _ : state) benchmark::DoNotOptimize(s_megabytes);
    state.counters[bench::kMegabytes] = s_megabytes;
}
BENCHMARK(instanceMemory)->Name("instance/memory")->Iterations(1);

// A stereo block of 64 floats through a whole instance.
void instanceBlock(benchmark::State& state) {
    firstInstanceSeconds();
    bench::startApplication();
    BenchInstance instance;
    instance.resume(2);
    constexpr int kFrames = 64;
    std::vector<float> in(kFrames * 2, 0.9F);
    std::vector<float> out(kFrames * 2);
    const void* const inputs[] = {in.data(), in.data() + kFrames};
    void* const outputs[] = {out.data(), out.data() + kFrames};
    for (int i = 0; i < 200; ++i) instance.process(inputs, outputs, kFrames);
    for (auto _ : state) instance.process(inputs, outputs, kFrames);
}
BENCHMARK(instanceBlock)->Name("instance/block");

void instanceState(benchmark::State& state) {
    firstInstanceSeconds();
    bench::startApplication();
    BenchInstance instance;
    brt::CByteBuffer bytes;
    for (auto _ : state) {
        if (brt::discardError(instance.getState(bytes, brt::EStateKind::kBank, true)) ||
            brt::discardError(instance.setState(bytes.data(), bytes.size(), brt::EStateKind::kBank, true)))
            state.SkipWithError("the state did not come back");
    }
}
BENCHMARK(instanceState)->Name("instance/state");

const bool kTargets[] = {
    bench::addTarget({"memory of a further instance, clippers included, MB", "instance/memory/iterations:1", "",
                      bench::Target::kAtMost, 3.0, 2.0}),
    bench::addTarget({"first instance of a process", "instance/first/iterations:1/manual_time", "",
                      bench::Target::kAtMost, 30e6, 15e6}),
    bench::addTarget({"each further instance", "instance/next/manual_time", "", bench::Target::kAtMost, 5e6, 2.5e6}),
};

}  // namespace
