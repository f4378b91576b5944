#include "graphics/view/zoom_tool.h"

namespace vexa {

void ZoomTool::toggle(ZoomMode tool) {
  if (m_dragging) stopDragging();
  if (m_zoom.mode() == tool) {
    putAway();
    return;
  }
  m_zoom.setMode(tool);
  m_window.showStatus(tool == ZoomMode::zoomIn ? zoomInHint : zoomOutHint);
}

void ZoomTool::putAway() {
  if (m_zoom.mode() != ZoomMode::none) m_window.showStatus({});
  m_zoom.setMode(ZoomMode::none);
}

void ZoomTool::zoomNormal() {
  if (m_dragging) stopDragging();
  putAway();
  m_zoom.zoomNormal();
}

ZoomCursor ZoomTool::cursor() const {
  if (m_dragging) return ZoomCursor::cross;
  return m_zoom.mode() == ZoomMode::none ? ZoomCursor::arrow : ZoomCursor::zoom;
}

void ZoomTool::leftButtonDown(DevicePoint point) {
  if (m_zoom.mode() != ZoomMode::zoomIn) return;
  m_dragging = true;
  m_boxIsDrawn = false;
  m_window.captureMouse();
  const Point corner = m_zoom.toLogical(point);
  m_box = {corner.x, corner.y, corner.x, corner.y};
  m_window.showCursor(ZoomCursor::cross);
}

void ZoomTool::mouseMoved(DevicePoint point) {
  if (!m_dragging) return;
  eraseBox();
  const Point corner = m_zoom.toLogical(point);
  m_box.right = corner.x;
  m_box.bottom = corner.y;
  m_window.invertBox(m_box);
  m_boxIsDrawn = true;
}

void ZoomTool::leftButtonUp(DevicePoint point) {
  if (m_dragging) {
    stopDragging();
    m_zoom.zoomToBox(m_box);
  } else if (m_zoom.mode() == ZoomMode::zoomOut) {
    m_zoom.zoomOut(m_zoom.toLogical(point));
  }
}

void ZoomTool::rightButtonDown() {
  if (m_dragging)
    stopDragging();
  else
    putAway();
}

void ZoomTool::eraseBox() {
  if (m_boxIsDrawn) m_window.invertBox(m_box);
  m_boxIsDrawn = false;
}

void ZoomTool::stopDragging() {
  m_dragging = false;
  m_window.releaseMouse();
  m_window.showCursor(ZoomCursor::zoom);
  eraseBox();
}

}  // namespace vexa
