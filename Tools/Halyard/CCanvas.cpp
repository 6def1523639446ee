// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/CCanvas.h"

#include <numbers>

#include "Tools/Halyard/CPendingFile.h"
#include "Tools/Halyard/ToolError.h"

namespace brt {

namespace {

constexpr int kPixelsPerUnit = 2;
constexpr const char* kFontFamily = "DejaVu Sans";  // comes with the packages; any other sans serif does as well

cairo_status_t writePng(void* file, const unsigned char* bytes, unsigned int count) {
    return static_cast<CPendingFile*>(file)->write(bytes, count) ? CAIRO_STATUS_SUCCESS : CAIRO_STATUS_WRITE_ERROR;
}

}  // namespace

void CCanvas::Release::operator()(cairo_t* context) const noexcept { cairo_destroy(context); }

CCanvas::CCanvas(int width, int height, const Colour& background) {
    cairo_surface_t* surface =
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, width * kPixelsPerUnit, height * kPixelsPerUnit);
    m_context.reset(cairo_create(surface));
    cairo_surface_destroy(surface);  // the context holds it
    cairo_scale(m_context.get(), kPixelsPerUnit, kPixelsPerUnit);
    setColour(background);
    cairo_paint(m_context.get());
}

CCanvas::~CCanvas() = default;

void CCanvas::setColour(const Colour& colour) {
    cairo_set_source_rgba(m_context.get(), colour.red, colour.green, colour.blue, colour.alpha);
}

void CCanvas::setLine(const LineStyle& style) {
    setColour(style.colour);
    cairo_set_line_width(m_context.get(), style.width);
    cairo_set_dash(m_context.get(), &style.dash, style.dash > 0 ? 1 : 0, 0);
    cairo_set_line_join(m_context.get(), CAIRO_LINE_JOIN_ROUND);
}

void CCanvas::setFont(const TextStyle& style) {
    cairo_select_font_face(m_context.get(), kFontFamily, CAIRO_FONT_SLANT_NORMAL,
                           style.isBold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(m_context.get(), style.size);
}

void CCanvas::path(const std::vector<Point>& points) {
    cairo_new_path(m_context.get());
    for (const Point& point : points) cairo_line_to(m_context.get(), point.x, point.y);
}

void CCanvas::line(const Point& from, const Point& to, const LineStyle& style) { curve({from, to}, style); }

void CCanvas::curve(const std::vector<Point>& points, const LineStyle& style) {
    setLine(style);
    path(points);
    cairo_stroke(m_context.get());
}

void CCanvas::area(const std::vector<Point>& outline, const Colour& colour) {
    setColour(colour);
    path(outline);
    cairo_fill(m_context.get());
}

void CCanvas::fill(const Rectangle& r, const Colour& colour) {
    setColour(colour);
    cairo_rectangle(m_context.get(), r.left, r.top, r.width, r.height);
    cairo_fill(m_context.get());
}

void CCanvas::outline(const Rectangle& r, const LineStyle& style) {
    setLine(style);
    cairo_rectangle(m_context.get(), r.left, r.top, r.width, r.height);
    cairo_stroke(m_context.get());
}

void CCanvas::dot(const Point& centre, double radius, const Colour& colour) {
    setColour(colour);
    cairo_new_path(m_context.get());
    cairo_arc(m_context.get(), centre.x, centre.y, radius, 0, 2 * std::numbers::pi);
    cairo_fill(m_context.get());
}

double CCanvas::textWidth(const std::string& text, const TextStyle& style) {
    setFont(style);
    cairo_text_extents_t extents;
    cairo_text_extents(m_context.get(), text.c_str(), &extents);
    return extents.x_advance;
}

void CCanvas::text(const std::string& text, const Point& at, const TextStyle& style) {
    const double width = textWidth(text, style);
    const double shift = style.anchor == TextAnchor::kStart ? 0 : style.anchor == TextAnchor::kEnd ? width : width / 2;
    cairo_save(m_context.get());
    setColour(style.colour);
    cairo_translate(m_context.get(), at.x, at.y);
    if (style.isVertical) cairo_rotate(m_context.get(), -std::numbers::pi / 2);
    cairo_move_to(m_context.get(), -shift, 0);
    cairo_show_text(m_context.get(), text.c_str());
    cairo_restore(m_context.get());
}

void CCanvas::clip(const Rectangle& r) {
    cairo_save(m_context.get());
    cairo_rectangle(m_context.get(), r.left, r.top, r.width, r.height);
    cairo_clip(m_context.get());
}

void CCanvas::unclip() { cairo_restore(m_context.get()); }

void CCanvas::save(CPendingFile& png) {
    const cairo_status_t status = cairo_surface_write_to_png_stream(cairo_get_target(m_context.get()), writePng, &png);
    png.throwIfFailed();
    if (status != CAIRO_STATUS_SUCCESS)
        throw CToolError(std::string("cannot draw the picture: ") + cairo_status_to_string(status));
}

}  // namespace brt
