// SPDX-License-Identifier: LicenseRef-Halyard
// Which form of the signal path's inner loops runs. Each exists once as source and is compiled once per build
// (cmake/ProcessorBuilds.cmake), in a namespace with the build's name. The builds differ in speed and in rounding, not
// in what they compute. Threads: every operation is [any]. The choice is made at the first call and then stands as long
// as the program.
#pragma once

namespace brt {

enum class ProcessorBuild {
    kPortable,  // plain doubles, for any processor: the form that the others are held against
    kBaseline,  // 2 doubles a vector, every x86-64 processor
    kAvx2,      // 4 doubles a vector, fused multiply-add
    kAvx512,    // 8 doubles a vector, fused multiply-add
};
inline constexpr int kProcessorBuildCount = 4;

// [any] True when this program contains the build and this machine's processor and system can run it.
bool isProcessorBuildSupported(ProcessorBuild build);

// [any] The build to use when nobody asks for a certain one: the fastest one supported. HALYARD_BUILD in the
// environment, read at the first call, names another unless it is empty; a name that is unknown or not supported is
// ignored with a line in the log.
ProcessorBuild processorBuild();

// [any] The build of that name, else, and for null, the fastest one supported; a name that cannot be served is logged.
ProcessorBuild chooseProcessorBuild(const char* wantedName);

// [any] "portable", "baseline", "avx2" or "avx512", as in HALYARD_BUILD.
const char* processorBuildName(ProcessorBuild build);

}  // namespace brt
