// SPDX-License-Identifier: LicenseRef-Halyard
// Clipper channels that lie ready, so that the audio thread need not build one when a channel comes: that takes memory
// from the system. Those of channels that go come back here.
// Owner: the instance; outlives its graph. Threads: any; a lock of a few instructions.
#pragma once

#include <array>
#include <memory>

#include "Modules/CHalyardCore.h"
#include "Platform/CPriorityLock.h"

namespace brt {

class CHalyardCoreStock {
public:
    static constexpr int kSpares = 2;

    CHalyardCoreStock() = default;
    CHalyardCoreStock(const CHalyardCoreStock&) = delete;
    CHalyardCoreStock& operator=(const CHalyardCoreStock&) = delete;

    // [any] Makes as many as are missing from the spares. Not on the audio thread.
    void fill();

    // [audio] One that holds silence; made on the spot if none lies here.
    [[nodiscard]] std::unique_ptr<CHalyardCore> take();
    // [audio]
    void give(std::unique_ptr<CHalyardCore> core) noexcept;

    // [any]
    int count() noexcept;

private:
    static constexpr int kShelfSize = 32;

    std::unique_ptr<CHalyardCore> takeSpare() noexcept;

    CPriorityLock m_section;
    std::array<std::unique_ptr<CHalyardCore>, kShelfSize> m_shelf BRT_GUARDED_BY(m_section);
    int m_count BRT_GUARDED_BY(m_section) = 0;
};

}  // namespace brt
