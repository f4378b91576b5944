#pragma once

// The two zoom tools of a drawing view: what their commands and the mouse do. Points of the mouse
// are in device units of the client area.

#include <string_view>

#include "graphics/view/zoom_state.h"

namespace vexa {

inline constexpr std::string_view zoomInHint = "Click to zoom in on point or drag a zoom box.";
inline constexpr std::string_view zoomOutHint =
    "Click to zoom out on point. Right click to terminate";

class ZoomTool {
 public:
  // Both must outlive this.
  ZoomTool(ZoomState& zoom, ZoomWindow& window) : m_zoom(zoom), m_window(window) {}

  // The commands take a tool up, or put it away when it is in use. A menu shows a check mark at
  // the tool whose mode is the zoom state's.
  void toggleZoomIn() { toggle(ZoomMode::zoomIn); }
  void toggleZoomOut() { toggle(ZoomMode::zoomOut); }
  void zoomNormal();

  // The cursor over the client area.
  ZoomCursor cursor() const;
  bool dragging() const { return m_dragging; }
  void leftButtonDown(DevicePoint point);
  void mouseMoved(DevicePoint point);
  void leftButtonUp(DevicePoint point);
  // Cancels a drag; without one, ends the tool.
  void rightButtonDown();

 private:
  void toggle(ZoomMode tool);
  void putAway();
  void eraseBox();
  void stopDragging();

  ZoomState& m_zoom;
  ZoomWindow& m_window;
  bool m_dragging = false;
  bool m_boxIsDrawn = false;
  Rect m_box;  // from the anchor to the moving corner, in logical units
};

}  // namespace vexa
