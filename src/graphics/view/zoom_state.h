#pragma once

// Zoom and scroll of a drawing view, without its window: how large the drawing is at the present
// scale, how far a scroll step goes, and what each zoom does.
//
// The window's extents stand to the viewport's as 1 to the scale, in both directions: a logical
// point lies in the client area at point × scale − scroll position, rounded to the nearest pixel.
// Scales and sizes are computed in single precision and truncated; what 32 bits do not hold is
// brought to the nearest bound.

#include <optional>

#include "graphics/view/zoom_window.h"

namespace vexa {

enum class ZoomMode { none = 0, zoomIn = 1, zoomOut = 2 };

// What one click of a tool does to the scale.
inline constexpr float zoomClickFactor = 1.41422F;
// Zooming in is refused from a scale above the first, zooming out from one below the second.
inline constexpr float zoomInLimit = 16.0F;
inline constexpr float zoomOutLimit = 0.05F;
// A box whose larger side has fewer device units counts as a click.
inline constexpr int smallestZoomBox = 10;

// Lengths in logical units.
struct LogicalSize {
  std::int32_t width = 0, height = 0;
};

class ZoomState {
 public:
  // `window` must outlive this.
  explicit ZoomState(ZoomWindow& window) : m_window(window) {}

  float scale() const { return m_scale; }
  ZoomMode mode() const { return m_mode; }
  DeviceSize baseSize() const { return m_baseSize; }
  // The scroll range.
  DeviceSize currentSize() const { return m_currentSize; }
  DeviceSize pageStep() const { return m_pageStep; }
  DeviceSize lineStep() const { return m_lineStep; }
  Point lastCentre() const { return m_lastCentre; }

  // Positions are relative to the client area.
  DevicePoint toDevice(Point logical) const;
  Point toLogical(DevicePoint client) const;

  // A logical step of 0 stands for a tenth: of the current size for pages, of a page for lines.
  // The scale stays as it is.
  void setSizes(LogicalSize total, LogicalSize pageStep = {}, LogicalSize lineStep = {});
  // Without a point: at the middle of the client area.
  void zoomIn(std::optional<Point> point, float factor = zoomClickFactor);
  void zoomOut(std::optional<Point> point, float factor = zoomClickFactor);
  void zoomToBox(Rect box);
  // Back to scale 1 and no tool, with the last centre in the middle.
  void zoomNormal();
  void setMode(ZoomMode mode);
  // Scrolls so that the point is in the middle of the client area, as far as the range allows.
  void centreOn(Point point);

 private:
  Point clientCentre() const;
  void zoomTo(float scale, Point centre);
  void recomputeSteps();

  ZoomWindow& m_window;
  float m_scale = 1.0F;
  ZoomMode m_mode = ZoomMode::none;
  DeviceSize m_baseSize, m_currentSize, m_pageStep, m_lineStep;
  LogicalSize m_logicalPageStep, m_logicalLineStep;
  Point m_lastCentre;
};

}  // namespace vexa
