#include "graphics/view/zoom_state.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace vexa {

namespace {

std::int32_t saturated(double value) {
  if (std::isnan(value)) return 0;
  constexpr double lowest = std::numeric_limits<std::int32_t>::min();
  constexpr double highest = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::clamp(value, lowest, highest));
}

std::int32_t scaledSize(std::int32_t base, float scale) {
  const float product = static_cast<float>(base) * scale;
  return saturated(static_cast<double>(product));
}

std::int32_t scaledStep(std::int32_t logical, float scale, std::int32_t whole) {
  if (logical == 0) return whole / 10;
  return saturated(std::abs(std::round(static_cast<double>(logical) * scale)));
}

// Where the scroll position must be for `point`, in device units from the drawing's corner, to
// stand in the middle.
std::int32_t centredPosition(double point, std::int32_t client, std::int32_t range) {
  const double highest = std::max(0.0, static_cast<double>(range) - client);
  const std::int32_t middle = client / 2;
  return saturated(std::clamp(std::round(point) - middle, 0.0, highest));
}

// Halves of the box are those of whole numbers, formed where their sum cannot overflow.
std::int32_t middle(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>((std::int64_t{a} + b) / 2);
}

float fittingScale(std::int32_t client, std::int64_t length) {
  return (static_cast<float>(client) + 1.0F) / static_cast<float>(length);
}

}  // namespace

DevicePoint ZoomState::toDevice(Point logical) const {
  const DevicePoint scroll = m_window.scrollPosition();
  const auto scale = static_cast<double>(m_scale);
  return {saturated(std::round(logical.x * scale) - scroll.x),
          saturated(std::round(logical.y * scale) - scroll.y)};
}

Point ZoomState::toLogical(DevicePoint client) const {
  const DevicePoint scroll = m_window.scrollPosition();
  const auto scale = static_cast<double>(m_scale);
  return {saturated(std::round((static_cast<double>(client.x) + scroll.x) / scale)),
          saturated(std::round((static_cast<double>(client.y) + scroll.y) / scale))};
}

Point ZoomState::clientCentre() const {
  const DeviceSize client = m_window.clientSize();
  return toLogical({client.width / 2, client.height / 2});
}

void ZoomState::setSizes(LogicalSize total, LogicalSize pageStep, LogicalSize lineStep) {
  m_baseSize = {total.width, total.height};
  m_currentSize = m_baseSize;
  m_logicalPageStep = pageStep;
  m_logicalLineStep = lineStep;
  recomputeSteps();
  m_window.afterZoom();
}

void ZoomState::recomputeSteps() {
  m_pageStep = {scaledStep(m_logicalPageStep.width, m_scale, m_currentSize.width),
                scaledStep(m_logicalPageStep.height, m_scale, m_currentSize.height)};
  m_lineStep = {scaledStep(m_logicalLineStep.width, m_scale, m_pageStep.width),
                scaledStep(m_logicalLineStep.height, m_scale, m_pageStep.height)};
  m_window.scrollRangeChanged();
}

void ZoomState::zoomTo(float scale, Point centre) {
  m_scale = scale;
  m_currentSize = {scaledSize(m_baseSize.width, scale), scaledSize(m_baseSize.height, scale)};
  recomputeSteps();
  centreOn(centre);
  m_window.afterZoom();
}

void ZoomState::zoomIn(std::optional<Point> point, float factor) {
  // Strict, so that one more step is taken from exactly the limit.
  if (m_scale > zoomInLimit) return;
  zoomTo(m_scale * factor, point ? *point : clientCentre());
}

void ZoomState::zoomOut(std::optional<Point> point, float factor) {
  if (m_scale < zoomOutLimit) return;
  zoomTo(m_scale / factor, point ? *point : clientCentre());
}

void ZoomState::zoomToBox(Rect box) {
  box = normalized(box);
  const Point centre{middle(box.left, box.right), middle(box.top, box.bottom)};
  const DevicePoint corner = toDevice({box.left, box.top});
  const DevicePoint opposite = toDevice({box.right, box.bottom});
  const std::int64_t larger = std::max(std::int64_t{opposite.x} - corner.x,  //
                                       std::int64_t{opposite.y} - corner.y);
  if (larger < smallestZoomBox) {
    zoomIn(centre);
    return;
  }
  const DeviceSize client = m_window.clientSize();
  // A side of length 0 fits at any scale and leaves the choice to the other.
  zoomTo(
      std::min(fittingScale(client.width, box.width()), fittingScale(client.height, box.height())),
      centre);
}

void ZoomState::zoomNormal() {
  setMode(ZoomMode::none);
  m_scale = 1.0F;
  m_currentSize = m_baseSize;
  centreOn(m_lastCentre);
  recomputeSteps();
  m_window.afterZoom();
}

void ZoomState::setMode(ZoomMode mode) {
  if (mode == m_mode) return;
  m_mode = mode;
  m_window.showCursor(mode == ZoomMode::none ? ZoomCursor::arrow : ZoomCursor::zoom);
}

void ZoomState::centreOn(Point point) {
  m_lastCentre = point;
  const DeviceSize client = m_window.clientSize();
  const auto scale = static_cast<double>(m_scale);
  m_window.scrollTo({centredPosition(point.x * scale, client.width, m_currentSize.width),
                     centredPosition(point.y * scale, client.height, m_currentSize.height)});
}

}  // namespace vexa
