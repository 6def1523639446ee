// SPDX-License-Identifier: LicenseRef-Halyard
// A sheet to draw on, kept in memory and saved as PNG. Lengths are in units; a unit is two pixels, so that thin lines
// and small letters stay sharp in print. The origin is at the top left. Owner: who draws. Threads: one at a time.
#pragma once

#include <cairo.h>

#include <memory>
#include <string>
#include <vector>

namespace brt {

class CPendingFile;

struct Colour {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;
};

struct Point {
    double x = 0;
    double y = 0;
};

struct Rectangle {
    double left = 0;
    double top = 0;
    double width = 0;
    double height = 0;

    double right() const noexcept { return left + width; }
    double bottom() const noexcept { return top + height; }
};

struct LineStyle {
    Colour colour;
    double width = 1;
    double dash = 0;  // length of a dash and of the gap behind it; 0 for a solid line
};

enum class TextAnchor { kStart, kMiddle, kEnd };  // which part of the text stands at the point

struct TextStyle {
    double size = 12;
    Colour colour;
    bool isBold = false;
    bool isVertical = false;  // reads upward
    TextAnchor anchor = TextAnchor::kStart;
};

class CCanvas {
public:
    CCanvas(int width, int height, const Colour& background);
    ~CCanvas();
    CCanvas(const CCanvas&) = delete;
    CCanvas& operator=(const CCanvas&) = delete;

    void line(const Point& from, const Point& to, const LineStyle& style);
    void curve(const std::vector<Point>& points, const LineStyle& style);
    void area(const std::vector<Point>& outline, const Colour& colour);
    void fill(const Rectangle& rectangle, const Colour& colour);
    void outline(const Rectangle& rectangle, const LineStyle& style);
    void dot(const Point& centre, double radius, const Colour& colour);

    // The point is on the text's base line.
    void text(const std::string& text, const Point& at, const TextStyle& style);
    double textWidth(const std::string& text, const TextStyle& style);

    // Until the matching unclip(), nothing is drawn outside the rectangle.
    void clip(const Rectangle& rectangle);
    void unclip();

    // Throws CToolError, as on a full disk.
    void save(CPendingFile& png);

private:
    struct Release {
        void operator()(cairo_t* context) const noexcept;
    };

    void setColour(const Colour& colour);
    void setLine(const LineStyle& style);
    void setFont(const TextStyle& style);
    void path(const std::vector<Point>& points);

    std::unique_ptr<cairo_t, Release> m_context;
};

}  // namespace brt
