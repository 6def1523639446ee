// SPDX-License-Identifier: LicenseRef-Halyard
// One diagram on a canvas: title, two axes with ticks, grid, curves, legend. What is drawn is given in the axes'
// values. The order of drawing is the order of the calls; the frame and the grid come first, with the constructor.
// Owner: who draws. Threads: one at a time.
#pragma once

#include <string>
#include <vector>

#include "Tools/Halyard/CCanvas.h"

namespace brt {

// The colours of all pictures, so that the same thing looks the same everywhere.
namespace palette {
inline constexpr Colour kPaper{1, 1, 1};
inline constexpr Colour kPlot{0.985, 0.987, 0.99};
inline constexpr Colour kInk{0.13, 0.16, 0.20};
inline constexpr Colour kFaintInk{0.42, 0.46, 0.51};
inline constexpr Colour kGrid{0.88, 0.895, 0.91};
inline constexpr Colour kFrame{0.62, 0.66, 0.70};
inline constexpr Colour kBefore{0.60, 0.65, 0.71};
inline constexpr Colour kAfter{0.07, 0.36, 0.62};
inline constexpr Colour kAccent{0.78, 0.30, 0.18};
}  // namespace palette

struct Tick {
    double value;
    std::string label;  // empty: a grid line only
};

struct Axis {
    std::string title;
    double from = 0;
    double to = 1;
    bool isLogarithmic = false;
    std::vector<Tick> ticks;

    // 0 at `from`, 1 at `to`; beyond them outside.
    double placeOf(double value) const;
};

// About `tickCount` ticks on round numbers.
Axis linearAxis(std::string title, double from, double to, int tickCount);

// Ticks at 1, 2 and 5 times the powers of ten, grid lines between; 1000 and more read "1k".
Axis frequencyAxis(std::string title, double fromHz, double toHz);

class CChart {
public:
    // `area` includes titles and labels.
    CChart(CCanvas& canvas, const Rectangle& area, const std::string& title, Axis x, Axis y);

    // The rectangle between the axes.
    const Rectangle& plot() const noexcept { return m_plot; }

    void curve(const std::vector<Point>& values, const LineStyle& style);
    void between(const std::vector<Point>& upper, const std::vector<Point>& lower, const Colour& colour);
    void below(const std::vector<Point>& values, const Colour& colour);
    void horizontal(double value, const LineStyle& style);
    void vertical(double value, const LineStyle& style);
    void dot(const Point& value, const Colour& colour);
    // A little above the point.
    void note(const std::string& text, const Point& value, const Colour& colour);

    enum class Swatch { kLine, kArea, kDot };
    struct LegendEntry {
        std::string text;
        LineStyle style;
        Swatch swatch = Swatch::kLine;
    };
    enum class Corner { kTopLeft, kTopRight, kBottomLeft, kBottomRight };
    void legend(const std::vector<LegendEntry>& entries, Corner corner);

private:
    Point place(const Point& value) const;
    void drawX();
    void drawY();
    void drawSwatch(const LegendEntry& entry, double left, double middle);

    CCanvas& m_canvas;
    const Axis m_x;
    const Axis m_y;
    const Rectangle m_plot;
};

}  // namespace brt
