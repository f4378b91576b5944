#pragma once

// Records an enhanced metafile (EMF), the picture format of office programs. Logical units are the
// pixels of its reference device; pens, brushes and fonts are recorded as they are selected, shapes
// as themselves, so that what plays the file draws a rectangle where the drawing has one.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "graphics/surfaces/drawing_surface.h"
#include "graphics/surfaces/picture_page.h"

namespace vexa {

class MetafileSurface : public DrawingSurface {
 public:
  // `description` is what programs show about the picture.
  MetafileSurface(PicturePage page, std::string description);

  // The whole file, framed by the page; nothing when it is longer than the format can say.
  std::optional<std::string> document() const;
  // The same framed by what was drawn.
  std::optional<std::string> croppedDocument() const;

  void line(Point from, Point to) override;
  void polyline(std::span<const Point> points) override;
  void bezier(std::span<const Point> points) override;
  void arc(const Rect& box, Point start, Point end) override;
  void polygon(std::span<const Point> points) override;
  void bezierPath(std::span<const Point> points) override;
  void rectangle(const Rect& box) override;
  void roundedRectangle(const Rect& box, std::int32_t cornerWidth,
                        std::int32_t cornerHeight) override;
  void ellipse(const Rect& box) override;
  void chord(const Rect& box, Point start, Point end) override;
  void pie(const Rect& box, Point start, Point end) override;
  void fillArea(const Rect& area, ColorRef color) override;
  void text(Point corner, std::string_view bytes) override;
  Rect paintArea() const override { return m_page.area(); }

 private:
  // An object in use has one of two numbers, its successor the other.
  template <class Object>
  struct Selected {
    std::optional<Object> object;
    std::uint32_t number = 0;
  };

  template <class Object, class Write>
  void replaceObject(Selected<Object>& selected, const Object& object, std::uint32_t firstNumber,
                     Write write);
  void selectPen();
  void selectBrush(const Brush& brush);
  void selectFont();
  void selectStock(std::uint32_t object);
  void applyBackground();
  void pointsRecord(std::uint32_t shortType, std::uint32_t longType, std::span<const Point> points);
  void boxRecord(std::uint32_t type, const Rect& box, std::span<const Point> more = {});
  void putAdvances(std::u32string_view text);
  void include(const Rect& box, std::int32_t margin);
  std::optional<std::string> framed(const Rect& frame) const;

  PicturePage m_page;
  std::string m_description;
  std::string m_records;
  std::uint32_t m_recordCount = 0;
  Selected<Pen> m_selectedPen;
  Selected<Brush> m_selectedBrush;
  Selected<FontDescription> m_selectedFont;
  std::optional<ColorRef> m_recordedTextColor;
  ColorRef m_recordedBackground = white;
  BackgroundMode m_recordedMode = BackgroundMode::opaque;
  std::optional<Point> m_position;
  std::optional<Rect> m_bounds;  // of what was drawn
};

}  // namespace vexa
