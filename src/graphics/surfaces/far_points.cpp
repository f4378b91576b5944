#include "graphics/surfaces/far_points.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

namespace vexa {

namespace {

// Past any pen and head that somebody would draw on purpose.
constexpr std::int64_t margin = 1 << 15;

std::int32_t saturated(std::int64_t value) {
  constexpr std::int64_t least = std::numeric_limits<std::int32_t>::min();
  constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::clamp(value, least, most));
}

bool isInside(Point p, const Rect& area) {
  return p.x >= area.left && p.x <= area.right && p.y >= area.top && p.y <= area.bottom;
}

// One side of an area: the coordinate that it bounds, from below or from above.
struct Side {
  std::int32_t Point::*along;
  std::int32_t Point::*across;
  std::int32_t bound;
  bool isLower;

  bool keeps(Point p) const { return isLower ? p.*along >= bound : p.*along <= bound; }
  // Of points on different sides.
  Point crossing(Point a, Point b) const {
    const double part =
        (static_cast<double>(bound) - a.*along) / (static_cast<double>(b.*along) - a.*along);
    const double step = static_cast<double>(b.*across) - a.*across;
    Point result;
    result.*along = bound;
    result.*across = static_cast<std::int32_t>(std::llround(a.*across + part * step));
    return result;
  }
};

std::array<Side, 4> sidesOf(const Rect& area) {
  return {{{&Point::x, &Point::y, area.left, true},
           {&Point::x, &Point::y, area.right, false},
           {&Point::y, &Point::x, area.top, true},
           {&Point::y, &Point::x, area.bottom, false}}};
}

std::optional<std::pair<Point, Point>> nearSegment(Point from, Point to, const Rect& area) {
  for (const Side& side : sidesOf(area)) {
    if (!side.keeps(from) && !side.keeps(to)) return std::nullopt;
    if (!side.keeps(from))
      from = side.crossing(from, to);
    else if (!side.keeps(to))
      to = side.crossing(from, to);
  }
  return std::pair(from, to);
}

}  // namespace

Rect nearArea(const Rect& page) {
  return {saturated(page.left - margin), saturated(page.top - margin),
          saturated(page.right + margin), saturated(page.bottom + margin)};
}

bool isNear(std::span<const Point> points, const Rect& area) {
  return std::all_of(points.begin(), points.end(), [&](Point p) { return isInside(p, area); });
}

std::vector<std::vector<Point>> nearPieces(std::span<const Point> points, const Rect& area) {
  std::vector<std::vector<Point>> pieces;
  bool goesOn = false;
  for (std::size_t i = 1; i < points.size(); ++i) {
    const auto segment = nearSegment(points[i - 1], points[i], area);
    if (segment) {
      if (!goesOn) pieces.push_back({segment->first});
      pieces.back().push_back(segment->second);
    }
    goesOn = segment && segment->second == points[i];
  }
  return pieces;
}

// Side after side, as Sutherland and Hodgman do it.
std::vector<Point> nearPolygon(std::span<const Point> points, const Rect& area) {
  std::vector<Point> result(points.begin(), points.end());
  for (const Side& side : sidesOf(area)) {
    const std::vector<Point> corners = std::exchange(result, {});
    for (std::size_t i = 0; i < corners.size(); ++i) {
      const Point before = corners[i == 0 ? corners.size() - 1 : i - 1];
      if (side.keeps(before) != side.keeps(corners[i]))
        result.push_back(side.crossing(before, corners[i]));
      if (side.keeps(corners[i])) result.push_back(corners[i]);
    }
  }
  return result;
}

Rect nearBox(const Rect& box, const Rect& area) {
  return {std::clamp(box.left, area.left, area.right), std::clamp(box.top, area.top, area.bottom),
          std::clamp(box.right, area.left, area.right),
          std::clamp(box.bottom, area.top, area.bottom)};
}

}  // namespace vexa
