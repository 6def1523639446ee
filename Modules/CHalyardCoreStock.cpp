// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/CHalyardCoreStock.h"

#include "Core/CSwapLock.h"

namespace brt {

int CHalyardCoreStock::count() noexcept {
    const CSwapLock lock(m_section);
    return m_count;
}

void CHalyardCoreStock::fill() {
    while (count() < kSpares) give(std::make_unique<CHalyardCore>());
}

std::unique_ptr<CHalyardCore> CHalyardCoreStock::takeSpare() noexcept {
    const CSwapLock lock(m_section);
    return m_count > 0 ? std::move(m_shelf[static_cast<std::size_t>(--m_count)]) : nullptr;
}

std::unique_ptr<CHalyardCore> CHalyardCoreStock::take() {
    std::unique_ptr<CHalyardCore> core = takeSpare();
    if (!core) return std::make_unique<CHalyardCore>();
    core->reset();
    return core;
}

// What a full shelf has no room for goes with the argument, behind the lock.
void CHalyardCoreStock::give(std::unique_ptr<CHalyardCore> core) noexcept {
    const CSwapLock lock(m_section);
    if (m_count < kShelfSize) m_shelf[static_cast<std::size_t>(m_count++)] = std::move(core);
}

}  // namespace brt
