// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/ScopedFlushToZero.h"

#include "Platform/Posix/FloatingPoint_p.h"

namespace brt {

ScopedFlushToZero::ScopedFlushToZero() noexcept : m_controlBefore(floatingPointControl()) {
    setFloatingPointControl(kDefaultControl | kFlushToZero);
}

ScopedFlushToZero::~ScopedFlushToZero() { setFloatingPointControl(m_controlBefore); }

}  // namespace brt
