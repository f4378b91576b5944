#include "graphics/surfaces/svg_surface.h"

#include <array>
#include <charconv>
#include <cmath>
#include <numbers>

#include "graphics/surfaces/drawn_text.h"
#include "graphics/surfaces/far_points.h"

namespace vexa {

namespace {

constexpr int decimals = 3;

void append(std::string& text, double number) {
  // Coordinates of 32 bits and their multiples take no more than this.
  std::array<char, 64> digits;
  char* end = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                            std::chars_format::fixed, decimals)
                  .ptr;
  while (end[-1] == '0') --end;
  if (end[-1] == '.') --end;
  const std::string_view written(digits.data(), static_cast<std::size_t>(end - digits.data()));
  text += written == "-0" ? "0" : written;
}

void append(std::string& text, std::int32_t number) {
  std::array<char, 16> digits;
  const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), number);
  text.append(digits.data(), end);
}

void append(std::string& text, Point point) {
  append(text, point.x);
  text += ' ';
  append(text, point.y);
}

void append(std::string& text, double x, double y) {
  append(text, x);
  text += ' ';
  append(text, y);
}

std::string attribute(std::string_view name, double value) {
  std::string text(1, ' ');
  text.append(name).append("=\"");
  append(text, value);
  return text += '"';
}

std::string attribute(std::string_view name, std::string_view value) {
  std::string text(1, ' ');
  return text.append(name).append("=\"").append(value).append("\"");
}

std::string colorName(ColorRef color) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string name = "#";
  for (const unsigned part : {redOf(color), greenOf(color), blueOf(color)}) {
    name += digits[part >> 4];
    name += digits[part & 15U];
  }
  if (name[1] == name[2] && name[3] == name[4] && name[5] == name[6])
    return {'#', name[1], name[3], name[5]};
  return name;
}

std::string escaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    switch (c) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      default:
        result += c;
    }
  }
  return result;
}

// A start, then as many whole pieces as there are.
std::string bezierData(std::span<const Point> points) {
  std::string data = "M";
  append(data, points[0]);
  for (std::size_t i = 1; i + 2 < points.size(); i += 3) {
    data += 'C';
    for (std::size_t k = i; k < i + 3; ++k) {
      if (k > i) data += ' ';
      append(data, points[k]);
    }
  }
  return data;
}

std::string arcData(const EllipseArc& arc) {
  std::string data = "M";
  append(data, arc.startX(), arc.startY());
  // An arc command cannot go all the way round.
  const int pieces = arc.isWhole() ? 2 : 1;
  for (int i = 1; i <= pieces; ++i) {
    data += 'A';
    append(data, arc.radiusX, arc.radiusY);
    data += arc.sweep / pieces > std::numbers::pi ? " 0 1 0 " : " 0 0 0 ";
    const double angle = arc.start + arc.sweep * i / pieces;
    append(data, arc.pointX(angle), arc.pointY(angle));
  }
  return data;
}

std::string_view hatchLines(BrushStyle style) {
  switch (style) {
    case BrushStyle::horizontal:
      return "M-1 4H9";
    case BrushStyle::vertical:
      return "M4-1V9";
    case BrushStyle::forwardDiagonal:
      return "M-1-1L9 9M-1 7L1 9M7-1L9 1";
    case BrushStyle::backwardDiagonal:
      return "M-1 9L9-1M-1 1L1-1M7 9L9 7";
    case BrushStyle::cross:
      return "M-1 4H9M4-1V9";
    case BrushStyle::diagonalCross:
      return "M-1-1L9 9M-1 7L1 9M7-1L9 1M-1 9L9-1M-1 1L1-1M7 9L9 7";
    case BrushStyle::solid:
    case BrushStyle::hollow:
      break;
  }
  return {};
}

// With a face that most systems have in place of it, and a generic one.
std::string familyList(const FontDescription& font) {
  constexpr std::array<std::string_view, 3> substitutes = {
      "'Times New Roman','Liberation Serif',serif", "Arial,'Liberation Sans',sans-serif",
      "'Courier New','Liberation Mono',monospace"};
  const std::string_view substitute = substitutes[static_cast<std::size_t>(familyOf(font))];
  std::string name;
  // What would end the name, or be read as its end, is left out.
  for (const char32_t c : decodeDrawnText(font.face()))
    if (c != U'\'' && c != U'\\') name += toUtf8({&c, 1});
  name = '\'' + escaped(name) + '\'';
  if (name == "''" || substitute.find(name) == 0 || name == "'Arial'")
    return std::string(substitute);
  return name.append(",").append(substitute);
}

std::string fontAttributes(const FontDescription& font) {
  std::string text = attribute("font-family", familyList(font));
  text += attribute("font-size", metricsOf(font).emSize);
  if (isBold(font)) text += " font-weight=\"bold\"";
  if (font.italic != 0) text += " font-style=\"italic\"";
  if (font.underline != 0 || font.strikeOut != 0) {
    const std::string_view both = "underline line-through";
    text += attribute("text-decoration", font.underline == 0   ? both.substr(10)
                                         : font.strikeOut == 0 ? both.substr(0, 9)
                                                               : both);
  }
  return text;
}

bool blanksMatter(std::u32string_view text) {
  return text.front() == U' ' || text.back() == U' ' ||
         text.find(U"  ") != std::u32string_view::npos;
}

}  // namespace

SvgSurface::SvgSurface(const PicturePage& page) : m_page(page), m_near(nearArea(page.area())) {}

std::string SvgSurface::document() const {
  std::string text = "<svg xmlns=\"http://www.w3.org/2000/svg\"";
  std::string width, height;
  append(width, m_page.printedWidth > 0 ? m_page.printedWidth : m_page.width);
  append(height,
         m_page.printedWidth > 0 ? m_page.height * m_page.millimetresPerUnit() : m_page.height);
  const std::string_view unit = m_page.printedWidth > 0 ? "mm" : "";
  text += attribute("width", width.append(unit)) + attribute("height", height.append(unit));
  std::string box = "0 0 ";
  append(box, Point{m_page.width, m_page.height});
  text += attribute("viewBox", box) + ">\n";
  if (!m_page.title.empty())
    text += "<title>" + escaped(toUtf8(decodeDrawnText(m_page.title))) + "</title>\n";
  if (!m_patterns.empty()) text += "<defs>\n" + m_patterns + "</defs>\n";
  text +=
      "<g transform=\"translate(.5 .5)\" fill=\"none\" stroke-linecap=\"round\" "
      "stroke-linejoin=\"round\">\n";
  text += m_body;
  if (!m_group.empty()) text += "</g>\n";
  return text += "</g>\n</svg>\n";
}

void SvgSurface::openGroup(const std::string& attributes) {
  if (attributes == m_group) return;
  if (!m_group.empty()) m_body += "</g>\n";
  m_body.append("<g").append(attributes).append(">\n");
  m_group = attributes;
}

void SvgSurface::beginStroke() {
  std::string attributes = attribute("stroke", colorName(pen().color));
  if (pen().width > 1) attributes += attribute("stroke-width", pen().width);
  openGroup(attributes);
}

void SvgSurface::beginShape() {
  std::string attributes = attribute("stroke", colorName(pen().color));
  if (pen().width > 1) attributes += attribute("stroke-width", pen().width);
  if (brush().style != BrushStyle::hollow)
    attributes += attribute("fill", fillOf(brush())) + " fill-rule=\"evenodd\"";
  openGroup(attributes);
}

void SvgSurface::element(std::string_view name, std::string_view attributes) {
  m_body.append("<").append(name).append(attributes);
  // A pen of one device pixel. The property is not inherited from a group.
  if (pen().width <= 0) m_body += " vector-effect=\"non-scaling-stroke\"";
  m_body += "/>\n";
}

void SvgSurface::path(std::string_view data) { element("path", attribute("d", data)); }

void SvgSurface::points(std::string_view name, std::span<const Point> points) {
  std::string list;
  for (const Point& point : points) {
    if (!list.empty()) list += ' ';
    append(list, point);
  }
  element(name, attribute("points", list));
}

std::string SvgSurface::fillOf(const Brush& brush) {
  return isHatch(brush.style) ? "url(#" + hatchName(brush) + ')' : colorName(brush.color);
}

std::string SvgSurface::hatchName(const Brush& brush) {
  const std::int64_t gaps =
      backgroundMode() == BackgroundMode::opaque ? std::int64_t{backgroundColor()} : -1;
  std::string& name = m_hatches[{brush.style, brush.color, gaps}];
  if (!name.empty()) return name;
  name = "hatch" + std::to_string(m_hatches.size());
  // Tiles lie on whole pixels, as readers that paint a tile once and copy it like them best.
  m_patterns += "<pattern" + attribute("id", name) + attribute("width", hatchSpacing) +
                attribute("height", hatchSpacing) +
                " patternUnits=\"userSpaceOnUse\" patternTransform=\"translate(-.5 -.5)\">";
  if (gaps >= 0)
    m_patterns += "<path d=\"M0 0H8V8H0\"" + attribute("fill", colorName(backgroundColor())) + "/>";
  m_patterns += "<path" + attribute("d", hatchLines(brush.style)) +
                attribute("stroke", colorName(brush.color)) +
                " transform=\"translate(.5 .5)\"/></pattern>\n";
  return name;
}

std::string SvgSurface::strokeWidthOf(const BoxOutline& outline) const {
  const bool thinned = pen().width > 1 && outline.strokeWidth < pen().width;
  return thinned ? attribute("stroke-width", outline.strokeWidth) : std::string();
}

void SvgSurface::line(Point from, Point to) {
  if (from == to) return;
  if (const std::array ends{from, to}; !isNear(ends, m_near)) {
    polyline(ends);
    return;
  }
  beginStroke();
  std::string data = "M";
  append(data, from);
  data += 'L';
  append(data, to);
  path(data);
}

void SvgSurface::polyline(std::span<const Point> points) {
  if (points.size() < 2) return;
  if (!isNear(points, m_near)) {
    for (const std::vector<Point>& piece : nearPieces(points, m_near)) polyline(piece);
    return;
  }
  beginStroke();
  this->points("polyline", points);
}

void SvgSurface::polygon(std::span<const Point> points) {
  if (points.size() < 2) return;
  if (!isNear(points, m_near)) {
    polygon(nearPolygon(points, m_near));
    return;
  }
  beginShape();
  this->points("polygon", points);
}

void SvgSurface::bezier(std::span<const Point> points) {
  if (points.size() < 4) return;
  beginStroke();
  path(bezierData(points));
}

void SvgSurface::bezierPath(std::span<const Point> points) {
  if (points.size() < 4) return;
  beginShape();
  path(bezierData(points) + 'Z');
}

void SvgSurface::rectangleElement(const BoxOutline& outline, double radiusX, double radiusY) {
  std::string attributes = strokeWidthOf(outline);
  if (outline.width == 0 || outline.height == 0) {
    // SVG does not show a rectangle without extent, but a line of any length.
    std::string data = "M";
    append(data, outline.left, outline.top);
    data += 'l';
    append(data, outline.width, outline.height);
    element("path", attributes + attribute("d", data));
    return;
  }
  attributes += attribute("x", outline.left) + attribute("y", outline.top) +
                attribute("width", outline.width) + attribute("height", outline.height);
  if (radiusX > 0 && radiusY > 0) {
    attributes += attribute("rx", radiusX);
    if (radiusY != radiusX) attributes += attribute("ry", radiusY);
  }
  element("rect", attributes);
}

void SvgSurface::rectangle(const Rect& box) {
  beginShape();
  rectangleElement(outlineOf(nearBox(box, m_near), pen()), 0, 0);
}

void SvgSurface::roundedRectangle(const Rect& box, std::int32_t cornerWidth,
                                  std::int32_t cornerHeight) {
  beginShape();
  rectangleElement(outlineOf(nearBox(box, m_near), pen()), std::abs(cornerWidth / 2.0),
                   std::abs(cornerHeight / 2.0));
}

void SvgSurface::ellipse(const Rect& box) {
  const BoxOutline outline = outlineOf(box, pen());
  beginShape();
  if (outline.width == 0 || outline.height == 0) {
    rectangleElement(outline, 0, 0);
    return;
  }
  const std::string middle = strokeWidthOf(outline) + attribute("cx", outline.centreX()) +
                             attribute("cy", outline.centreY());
  if (outline.width == outline.height)
    element("circle", middle + attribute("r", outline.width / 2));
  else
    element("ellipse",
            middle + attribute("rx", outline.width / 2) + attribute("ry", outline.height / 2));
}

void SvgSurface::arc(const Rect& box, Point start, Point end) {
  beginStroke();
  path(arcData(arcOf(box, start, end, pen())));
}

void SvgSurface::chord(const Rect& box, Point start, Point end) {
  beginShape();
  path(arcData(arcOf(box, start, end, pen())) + 'Z');
}

void SvgSurface::pie(const Rect& box, Point start, Point end) {
  const EllipseArc arc = arcOf(box, start, end, pen());
  std::string data = arcData(arc) + 'L';
  append(data, arc.x, arc.y);
  beginShape();
  path(data + 'Z');
}

void SvgSurface::fillArea(const Rect& area, ColorRef color) {
  openGroup(attribute("fill", colorName(color)));
  m_body += "<rect" + attribute("x", area.left - 0.5) + attribute("y", area.top - 0.5) +
            attribute("width", static_cast<double>(area.width())) +
            attribute("height", static_cast<double>(area.height())) + "/>\n";
}

void SvgSurface::text(Point corner, std::string_view bytes) {
  const std::u32string characters = decodeDrawnText(bytes);
  if (characters.empty()) return;
  const FontMetrics metrics = metricsOf(font());
  openGroup(attribute("fill", colorName(textColor())) + fontAttributes(font()));
  m_body += "<text";
  if (font().escapement == 0 && metrics.stretch == 1) {
    m_body += attribute("x", corner.x) + attribute("y", corner.y + metrics.ascent);
  } else {
    std::string transform = "translate(";
    append(transform, corner);
    if (font().escapement != 0) {
      transform += ")rotate(";
      append(transform, -font().escapement / 10.0);
    }
    if (metrics.stretch != 1) {
      transform += ")scale(";
      append(transform, metrics.stretch, 1.0);
    }
    m_body += attribute("transform", transform += ')') + attribute("y", metrics.ascent);
  }
  if (blanksMatter(characters)) m_body += " xml:space=\"preserve\"";
  m_body += '>' + escaped(toUtf8(characters)) + "</text>\n";
}

}  // namespace vexa
