// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/ProcessorBuild.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace brt {
namespace {

constexpr const char* kNames[kProcessorBuildCount] = {"portable", "baseline", "avx2", "avx512"};
constexpr const char* kEnvironmentVariable = "HALYARD_BUILD";

// The build plus one, or 0 while nobody has asked.
constinit std::atomic<int> s_choice{0};

#if defined(BRT_X86_BUILDS)
bool hasAvx2Generation() {
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") && __builtin_cpu_supports("bmi") &&
           __builtin_cpu_supports("bmi2") && __builtin_cpu_supports("popcnt");
}

bool hasAvx512Generation() {
    return hasAvx2Generation() && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
           __builtin_cpu_supports("avx512cd") && __builtin_cpu_supports("avx512dq") &&
           __builtin_cpu_supports("avx512vl");
}
#endif

ProcessorBuild fastestSupported() {
    for (int i = kProcessorBuildCount - 1; i > 0; --i)
        if (isProcessorBuildSupported(static_cast<ProcessorBuild>(i))) return static_cast<ProcessorBuild>(i);
    return ProcessorBuild::kPortable;
}

// True when `name` is a build that can run here; `build` is written only then.
bool findSupported(ProcessorBuild& build, const char* name) {
    for (int i = 0; i < kProcessorBuildCount; ++i) {
        if (std::strcmp(name, kNames[i]) != 0) continue;
        if (!isProcessorBuildSupported(static_cast<ProcessorBuild>(i))) return false;
        build = static_cast<ProcessorBuild>(i);
        return true;
    }
    return false;
}

}  // namespace

bool isProcessorBuildSupported(ProcessorBuild build) {
    switch (build) {
    case ProcessorBuild::kPortable: return true;
#if defined(BRT_X86_BUILDS)
    case ProcessorBuild::kBaseline: return true;
    case ProcessorBuild::kAvx2: return hasAvx2Generation();
    case ProcessorBuild::kAvx512: return hasAvx512Generation();
#endif
    default: return false;
    }
}

ProcessorBuild processorBuild() {
    if (const int choice = s_choice.load(std::memory_order_relaxed); choice != 0)
        return static_cast<ProcessorBuild>(choice - 1);

    ProcessorBuild build = fastestSupported();
    const char* wanted = std::getenv(kEnvironmentVariable);
    const bool refused = wanted != nullptr && !findSupported(build, wanted);
    int nobody = 0;
    if (!s_choice.compare_exchange_strong(nobody, static_cast<int>(build) + 1)) return processorBuild();
    if (refused)
        std::fprintf(stderr, "%s=%s is not a processor build of this machine; using %s.\n", kEnvironmentVariable,
                     wanted, processorBuildName(build));
    return build;
}

const char* processorBuildName(ProcessorBuild build) {
    const int index = static_cast<int>(build);
    return index >= 0 && index < kProcessorBuildCount ? kNames[index] : "unknown";
}

}  // namespace brt
