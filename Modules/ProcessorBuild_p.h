// SPDX-License-Identifier: LicenseRef-Halyard
// From a build to its inner loops. Files compiled per build each define one table of functions in their namespace:
//   namespace brt::BRT_BUILD { const ClipKernel kClipKernel = {...}; }
// A file above them declares these tables in namespace brt, together with the operation that picks one:
//   BRT_TABLE_PER_BUILD(ClipKernel, kClipKernel, clipKernel)    ->    const ClipKernel& clipKernel(ProcessorBuild)
#pragma once

#include "Modules/ProcessorBuild.h"

#if defined(BRT_X86_BUILDS)
#define BRT_TABLE_PER_BUILD(Type, table, pick)                  \
    namespace portable {                                        \
    extern const Type table;                                    \
    }                                                           \
    namespace baseline {                                        \
    extern const Type table;                                    \
    }                                                           \
    namespace avx2 {                                            \
    extern const Type table;                                    \
    }                                                           \
    namespace avx512 {                                          \
    extern const Type table;                                    \
    }                                                           \
    static const Type& pick(ProcessorBuild build) {             \
        switch (build) {                                        \
        case ProcessorBuild::kBaseline: return baseline::table; \
        case ProcessorBuild::kAvx2: return avx2::table;         \
        case ProcessorBuild::kAvx512: return avx512::table;     \
        default: return portable::table;                        \
        }                                                       \
    }
#else
#define BRT_TABLE_PER_BUILD(Type, table, pick) \
    namespace portable {                       \
    extern const Type table;                   \
    }                                          \
    static const Type& pick(ProcessorBuild) { return portable::table; }
#endif
