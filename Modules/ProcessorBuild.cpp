// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/ProcessorBuild.h"

#include "Core/Log.h"
#include "Platform/Processor.h"

#include <atomic>
#include <cstdlib>
#include <cstring>

namespace brt {
namespace {

constexpr const char* kNames[kProcessorBuildCount] = {"portable", "baseline", "avx2", "avx512"};
constexpr const char* kEnvironmentVariable = "HALYARD_BUILD";

// The build plus one, or 0 while nobody has asked.
constinit std::atomic<int> s_choice{0};

#if defined(BRT_X86_BUILDS)
// The compiler may use all of a generation in its build. Processors with these features have the rest of it too.
bool hasAvx2Generation() {
    const ProcessorFeatures& has = processorFeatures();
    return has.avx2 && has.fma && has.bmi1 && has.bmi2;
}

bool hasAvx512Generation() {
    const ProcessorFeatures& has = processorFeatures();
    return hasAvx2Generation() && has.avx512f && has.avx512bw && has.avx512cd && has.avx512dq && has.avx512vl;
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
#if defined(BRT_X86_BUILDS)
    case ProcessorBuild::kAvx512: return hasAvx512Generation();
    case ProcessorBuild::kAvx2: return hasAvx2Generation();
    case ProcessorBuild::kBaseline:
#endif
    case ProcessorBuild::kPortable: return true;
    default: return false;
    }
}

ProcessorBuild chooseProcessorBuild(const char* wantedName) {
    ProcessorBuild build = fastestSupported();
    if (wantedName != nullptr && !findSupported(build, wantedName))
        logLine("This machine has no processor build '%s' (%s); '%s' runs instead.", wantedName, kEnvironmentVariable,
                processorBuildName(build));
    return build;
}

ProcessorBuild processorBuild() {
    int choice = s_choice.load(std::memory_order_relaxed);
    if (choice == 0) {
        const char* wanted = std::getenv(kEnvironmentVariable);
        if (wanted != nullptr && *wanted == '\0') wanted = nullptr;
        const int mine = static_cast<int>(chooseProcessorBuild(wanted)) + 1;
        // Whoever comes first decides for all.
        if (s_choice.compare_exchange_strong(choice, mine)) choice = mine;
    }
    return static_cast<ProcessorBuild>(choice - 1);
}

const char* processorBuildName(ProcessorBuild build) {
    const int index = static_cast<int>(build);
    return index >= 0 && index < kProcessorBuildCount ? kNames[index] : "unknown";
}

}  // namespace brt
