// SPDX-License-Identifier: LicenseRef-Halyard
// How large an instance's window is on the screen: the size in the parameter, which a user drags, times the scale that
// the user has chosen for all windows.
// Owner: the wrapper. Threads: the host's or a window's, one at a time.
#pragma once

#include "Audio/CAudioParamCollector.h"
#include "Audio/Wrapper/CProductInfo.h"

namespace brt {

class CMainWindowSize {
public:
    // [init] Both outlive this object.
    void attach(CAudioParam& size, const CProductInfo& product);

    // Reads the scale anew, then the size.
    void update();
    // The size alone; true if it has changed.
    bool updateSize();

    int width() const noexcept { return m_width; }  // in pixels
    int height() const noexcept { return m_height; }
    double scale() const noexcept { return m_scale; }

private:
    int scaled(double length, int minimum) const noexcept;

    CAudioParam* m_size = nullptr;
    const CProductInfo* m_product = nullptr;
    double m_scale = 1.0;
    int m_width = 0;
    int m_height = 0;
};

}  // namespace brt
