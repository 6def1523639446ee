// SPDX-License-Identifier: LicenseRef-Halyard
#include "Other/FocusOnClick.h"

#include <atomic>

namespace brt {
namespace {

constinit std::atomic<bool> s_takesFocus{true};

}  // namespace

bool focusOnClick() noexcept { return s_takesFocus.load(std::memory_order_relaxed); }

void setFocusOnClick(bool takesFocus) noexcept { s_takesFocus.store(takesFocus, std::memory_order_relaxed); }

}  // namespace brt
