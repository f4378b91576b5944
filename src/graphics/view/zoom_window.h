#pragma once

// What the zooming of a drawing asks of the window that shows it. The desktop's view widget offers
// it; tests record the calls.

#include <cstdint>
#include <string_view>

#include "graphics/surfaces/drawing_types.h"

namespace vexa {

// Lengths and places in device units, that is pixels at the density for which a logical unit is
// one pixel at scale 1. Types of their own, so that the compiler tells them from logical units.
struct DevicePoint {
  std::int32_t x = 0, y = 0;
  bool operator==(const DevicePoint&) const = default;
};
struct DeviceSize {
  std::int32_t width = 0, height = 0;
  bool operator==(const DeviceSize&) const = default;
};

enum class ZoomCursor { arrow, cross, zoom };

class ZoomWindow {
 public:
  virtual ~ZoomWindow() = default;

  virtual DeviceSize clientSize() const = 0;
  // The point of the whole drawing, in device units, at the client area's upper left corner.
  virtual DevicePoint scrollPosition() const = 0;
  virtual void scrollTo(DevicePoint position) = 0;
  // Scroll range and steps have changed: update the scroll bars and repaint the client area.
  virtual void scrollRangeChanged() = 0;
  virtual void captureMouse() = 0;
  virtual void releaseMouse() = 0;
  virtual void showCursor(ZoomCursor cursor) = 0;
  // Draws the dashed zoom box such that drawing it a second time erases it.
  virtual void invertBox(const Rect& logicalBox) = 0;
  virtual void showStatus(std::string_view text) = 0;  // empty clears
  // The notification after every zoom.
  virtual void afterZoom() {}
};

}  // namespace vexa
