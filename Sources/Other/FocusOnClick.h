// SPDX-License-Identifier: LicenseRef-Halyard
// Whether a window takes the keyboard when somebody clicks into it: some hosts want their keys back. One for the
// process, as the host is; the last instance to start tells. Threads: any.
#pragma once

namespace brt {

bool focusOnClick() noexcept;
void setFocusOnClick(bool takesFocus) noexcept;

}  // namespace brt
