#include "graphics/document/mini_draw_doc.h"

#include <algorithm>

#include "graphics/figures/texts.h"

namespace vexa {

namespace {

CFigure* figureAt(const std::vector<std::unique_ptr<CFigure>>& figures, std::ptrdiff_t position) {
  if (position < 0 || static_cast<std::size_t>(position) >= figures.size()) return nullptr;
  return figures[static_cast<std::size_t>(position)].get();
}

}  // namespace

CFigure* CMiniDrawDoc::figure(std::ptrdiff_t position) { return figureAt(m_figures, position); }

const CFigure* CMiniDrawDoc::figure(std::ptrdiff_t position) const {
  return figureAt(m_figures, position);
}

std::size_t CMiniDrawDoc::add(std::unique_ptr<CFigure> figure) {
  m_figures.push_back(std::move(figure));
  m_modified = true;
  return m_figures.size() - 1;
}

void CMiniDrawDoc::removeFigures(std::size_t first, std::size_t last) {
  last = std::min(last, m_figures.size());
  if (first >= last) return;
  const auto begin = m_figures.begin();
  m_figures.erase(begin + static_cast<std::ptrdiff_t>(first),
                  begin + static_cast<std::ptrdiff_t>(last));
  m_modified = true;
}

void CMiniDrawDoc::deleteFigures() {
  while (!m_figures.empty()) m_figures.pop_back();
}

void CMiniDrawDoc::emptyDrawing() {
  deleteFigures();
  m_font = FontDescription{};
  addInitialFontItem();
}

void CMiniDrawDoc::addInitialFontItem() {
  add(std::make_unique<CFontItem>(*this, Point{}, Point{}));
  m_pictureStart = static_cast<std::int32_t>(figureCount());
}

void CMiniDrawDoc::clear() {
  emptyDrawing();
  m_modified = true;
}

void CMiniDrawDoc::ensureExtent() {
  if (m_settings.width > 0 && m_settings.height > 0) return;
  DrawingSettings fresh;
  fresh.formatNumber = m_settings.formatNumber;
  fresh.pictureLeft = m_settings.pictureLeft;
  fresh.pictureTop = m_settings.pictureTop;
  fresh.scaleFlags = m_settings.scaleFlags;
  m_settings = fresh;
}

}  // namespace vexa
