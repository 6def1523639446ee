// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CMagazines.h"

namespace brt {

bool CMagazines::claim(const void* owner) noexcept {
    const void* expected = nullptr;
    return m_owner.compare_exchange_strong(expected, owner, std::memory_order_acq_rel) || expected == owner;
}

void* CMagazines::reload(int classNumber, CSizeClass& shared) {
    CMagazine& magazine = m_magazines[classNumber];
    FreeBlock* const first = shared.takeChain();
    magazine.top = first->nextInChain;
    int count = 0;
    for (const FreeBlock* block = magazine.top; block != nullptr; block = block->nextInChain) ++count;
    magazine.setCount(count);
    return first;
}

void CMagazines::unload(int classNumber, CSizeClass& shared) noexcept {
    CMagazine& magazine = m_magazines[classNumber];
    if (magazine.top != nullptr) shared.giveChain(magazine.top);
    magazine.top = nullptr;
    magazine.setCount(0);
}

void CMagazines::forget() noexcept {
    for (CMagazine& magazine : m_magazines) {
        magazine.top = nullptr;
        magazine.setCount(0);
    }
}

}  // namespace brt
