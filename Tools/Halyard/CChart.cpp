// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/CChart.h"

#include <algorithm>
#include <cmath>

#include "Tools/Halyard/Decibels.h"

namespace brt {

namespace {

constexpr double kTitleHeight = 26;
constexpr double kLeftLabels = 58;
constexpr double kBottomLabels = 44;
constexpr double kTickLength = 4;
constexpr double kSwatchWidth = 24;
constexpr double kDotRadius = 3.2;

const TextStyle kTitleStyle{.size = 13, .colour = palette::kInk, .isBold = true};
const TextStyle kLabelStyle{.size = 10.5, .colour = palette::kFaintInk};
const TextStyle kAxisTitleStyle{.size = 11, .colour = palette::kInk, .anchor = TextAnchor::kMiddle};
const LineStyle kGridStyle{.colour = palette::kGrid, .width = 0.75};
const LineStyle kFrameStyle{.colour = palette::kFrame, .width = 1};

// With the sign that type has for it; a hyphen is too short beside digits.
std::string withMinus(std::string number) {
    if (number.front() == '-') number.replace(0, 1, "\u2212");
    return number;
}

std::string kilo(double hertz) { return hertz >= 1000 ? formatFixed(hertz / 1000, 0) + "k" : formatFixed(hertz, 0); }

}  // namespace

double Axis::placeOf(double value) const {
    if (!isLogarithmic) return (value - from) / (to - from);
    return std::log(value / from) / std::log(to / from);
}

Axis linearAxis(std::string title, double from, double to, int tickCount) {
    Axis axis{.title = std::move(title), .from = from, .to = to, .isLogarithmic = false, .ticks = {}};
    const double wished = (to - from) / tickCount;
    const double power = std::pow(10, std::floor(std::log10(wished)));
    const double ratio = wished / power;
    const double step = power * (ratio < 1.5 ? 1 : ratio < 3.5 ? 2 : ratio < 7.5 ? 5 : 10);
    const int decimals = std::max(0, -static_cast<int>(std::floor(std::log10(step) + 1e-9)));
    constexpr double kSlack = 1e-9;  // of a step: the ends count where they are ticks
    const auto first = static_cast<int>(std::ceil(from / step - kSlack));
    const auto last = static_cast<int>(std::floor(to / step + kSlack));
    for (int i = first; i <= last; ++i) axis.ticks.push_back({i * step, withMinus(formatFixed(i * step, decimals))});
    return axis;
}

Axis frequencyAxis(std::string title, double fromHz, double toHz) {
    Axis axis{.title = std::move(title), .from = fromHz, .to = toHz, .isLogarithmic = true, .ticks = {}};
    const auto decades = static_cast<int>(std::ceil(std::log10(toHz)));
    for (int exponent = 0; exponent <= decades; ++exponent)
        for (int digit = 1; digit <= 9; ++digit) {
            const double hertz = digit * std::pow(10, exponent);
            if (hertz < fromHz || hertz > toHz) continue;
            const bool isLabelled = digit == 1 || digit == 2 || digit == 5;
            axis.ticks.push_back({hertz, isLabelled ? kilo(hertz) : ""});
        }
    return axis;
}

CChart::CChart(CCanvas& canvas, const Rectangle& area, const std::string& title, Axis x, Axis y)
    : m_canvas(canvas),
      m_x(std::move(x)),
      m_y(std::move(y)),
      m_plot{area.left + kLeftLabels, area.top + kTitleHeight, area.width - kLeftLabels,
             area.height - kTitleHeight - kBottomLabels} {
    m_canvas.text(title, {m_plot.left, area.top + 14}, kTitleStyle);
    m_canvas.fill(m_plot, palette::kPlot);
    drawX();
    drawY();
    m_canvas.outline(m_plot, kFrameStyle);
}

void CChart::drawX() {
    TextStyle style = kLabelStyle;
    style.anchor = TextAnchor::kMiddle;
    for (const Tick& tick : m_x.ticks) {
        const double x = place({tick.value, m_y.from}).x;
        m_canvas.line({x, m_plot.top}, {x, m_plot.bottom()}, kGridStyle);
        if (tick.label.empty()) continue;
        m_canvas.line({x, m_plot.bottom()}, {x, m_plot.bottom() + kTickLength}, kFrameStyle);
        m_canvas.text(tick.label, {x, m_plot.bottom() + kTickLength + 12}, style);
    }
    m_canvas.text(m_x.title, {m_plot.left + m_plot.width / 2, m_plot.bottom() + kTickLength + 31}, kAxisTitleStyle);
}

void CChart::drawY() {
    TextStyle style = kLabelStyle;
    style.anchor = TextAnchor::kEnd;
    for (const Tick& tick : m_y.ticks) {
        const double y = place({m_x.from, tick.value}).y;
        m_canvas.line({m_plot.left, y}, {m_plot.right(), y}, kGridStyle);
        if (tick.label.empty()) continue;
        m_canvas.line({m_plot.left - kTickLength, y}, {m_plot.left, y}, kFrameStyle);
        m_canvas.text(tick.label, {m_plot.left - kTickLength - 4, y + 3.8}, style);
    }
    TextStyle titleStyle = kAxisTitleStyle;
    titleStyle.isVertical = true;
    m_canvas.text(m_y.title, {m_plot.left - kLeftLabels + 12, m_plot.top + m_plot.height / 2}, titleStyle);
}

Point CChart::place(const Point& value) const {
    // Far outside is as good as infinitely far, and safe for the drawing library.
    const auto bounded = [](double p) { return std::clamp(p, -10.0, 10.0); };
    return {m_plot.left + bounded(m_x.placeOf(value.x)) * m_plot.width,
            m_plot.bottom() - bounded(m_y.placeOf(value.y)) * m_plot.height};
}

void CChart::curve(const std::vector<Point>& values, const LineStyle& style) {
    std::vector<Point> points;
    points.reserve(values.size());
    for (const Point& value : values) points.push_back(place(value));
    m_canvas.clip(m_plot);
    m_canvas.curve(points, style);
    m_canvas.unclip();
}

void CChart::between(const std::vector<Point>& upper, const std::vector<Point>& lower, const Colour& colour) {
    std::vector<Point> outline;
    for (const Point& value : upper) outline.push_back(place(value));
    for (auto value = lower.rbegin(); value != lower.rend(); ++value) outline.push_back(place(*value));
    m_canvas.clip(m_plot);
    m_canvas.area(outline, colour);
    m_canvas.unclip();
}

void CChart::below(const std::vector<Point>& values, const Colour& colour) {
    if (!values.empty()) between(values, {{values.front().x, m_y.from}, {values.back().x, m_y.from}}, colour);
}

void CChart::horizontal(double value, const LineStyle& style) { curve({{m_x.from, value}, {m_x.to, value}}, style); }

void CChart::vertical(double value, const LineStyle& style) { curve({{value, m_y.from}, {value, m_y.to}}, style); }

void CChart::dot(const Point& value, const Colour& colour) {
    m_canvas.dot(place(value), kDotRadius + 1.3, palette::kPaper);
    m_canvas.dot(place(value), kDotRadius, colour);
}

void CChart::note(const std::string& text, const Point& value, const Colour& colour) {
    const Point at = place(value);
    m_canvas.text(text, {at.x + 8, at.y - 6}, {.size = 10.5, .colour = colour});
}

void CChart::drawSwatch(const LegendEntry& entry, double left, double middle) {
    switch (entry.swatch) {
    case Swatch::kLine: m_canvas.line({left, middle}, {left + kSwatchWidth, middle}, entry.style); break;
    case Swatch::kArea: m_canvas.fill({left, middle - 5, kSwatchWidth, 10}, entry.style.colour); break;
    case Swatch::kDot: m_canvas.dot({left + kSwatchWidth / 2, middle}, kDotRadius, entry.style.colour); break;
    }
}

void CChart::legend(const std::vector<LegendEntry>& entries, Corner corner) {
    constexpr double kPadding = 9;
    constexpr double kRow = 17;
    constexpr double kInset = 10;
    const TextStyle style{.size = 10.5, .colour = palette::kInk};
    double textWidth = 0;
    for (const LegendEntry& entry : entries) textWidth = std::max(textWidth, m_canvas.textWidth(entry.text, style));
    Rectangle box{0, 0, kSwatchWidth + 8 + textWidth + 2 * kPadding,
                  kRow * static_cast<double>(entries.size()) + 2 * kPadding - 5};
    const bool isRight = corner == Corner::kTopRight || corner == Corner::kBottomRight;
    const bool isTop = corner == Corner::kTopLeft || corner == Corner::kTopRight;
    box.left = isRight ? m_plot.right() - kInset - box.width : m_plot.left + kInset;
    box.top = isTop ? m_plot.top + kInset : m_plot.bottom() - kInset - box.height;

    m_canvas.fill(box, {1, 1, 1, 0.92});
    m_canvas.outline(box, kGridStyle);
    double middle = box.top + kPadding + 6;
    for (const LegendEntry& entry : entries) {
        const double left = box.left + kPadding;
        drawSwatch(entry, left, middle);
        m_canvas.text(entry.text, {left + kSwatchWidth + 8, middle + 3.8}, style);
        middle += kRow;
    }
}

}  // namespace brt
