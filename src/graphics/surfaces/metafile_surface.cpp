#include "graphics/surfaces/metafile_surface.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <numbers>
#include <utility>

#include "graphics/surfaces/drawn_text.h"

namespace vexa {

namespace {

// Record types of the format.
enum Record : std::uint32_t {
  recordHeader = 1,
  recordPolyBezier = 2,
  recordPolygon = 3,
  recordPolyline = 4,
  recordEnd = 14,
  recordBackgroundMode = 18,
  recordTextColor = 24,
  recordBackgroundColor = 25,
  recordMoveTo = 27,
  recordSelect = 37,
  recordCreatePen = 38,
  recordCreateBrush = 39,
  recordDelete = 40,
  recordEllipse = 42,
  recordRectangle = 43,
  recordRoundRectangle = 44,
  recordArc = 45,
  recordChord = 46,
  recordPie = 47,
  recordLineTo = 54,
  recordBeginPath = 59,
  recordEndPath = 60,
  recordCloseFigure = 61,
  recordStrokeAndFillPath = 63,
  recordCreateFont = 82,
  recordText = 84,
  recordPolyBezier16 = 85,
  recordPolygon16 = 86,
  recordPolyline16 = 87,
};

constexpr std::uint32_t hollowBrushStock = 0x80000005;
constexpr std::uint32_t noPenStock = 0x80000008;
constexpr std::uint32_t firstPenNumber = 1;
constexpr std::uint32_t firstBrushNumber = 3;
constexpr std::uint32_t firstFontNumber = 5;
constexpr std::uint16_t handleCount = 7;  // with the number 0, which is the file's own

constexpr std::uint32_t penSolid = 0;
constexpr std::uint32_t penInsideFrame = 6;
constexpr std::uint32_t brushSolid = 0;
constexpr std::uint32_t brushHatched = 2;
constexpr std::uint32_t compatibleMode = 1;
constexpr std::uint32_t noTextRectangle = 0x100;

constexpr std::size_t headerSize = 108;
constexpr std::size_t recordSizePlace = 4;  // in every record, behind its type

void putByte(std::string& bytes, std::uint32_t value) {
  bytes += static_cast<char>(static_cast<std::uint8_t>(value));
}

void putShort(std::string& bytes, std::uint32_t value) {
  putByte(bytes, value);
  putByte(bytes, value >> 8);
}

void putWord(std::string& bytes, std::uint32_t value) {
  putShort(bytes, value);
  putShort(bytes, value >> 16);
}

void putWord(std::string& bytes, std::int32_t value) {
  putWord(bytes, static_cast<std::uint32_t>(value));
}

void putPoint(std::string& bytes, Point point) {
  putWord(bytes, point.x);
  putWord(bytes, point.y);
}

void putRect(std::string& bytes, const Rect& rect) {
  for (const std::int32_t side : {rect.left, rect.top, rect.right, rect.bottom})
    putWord(bytes, side);
}

void putUnits(std::string& bytes, std::u16string_view text) {
  for (const char16_t unit : text) putShort(bytes, unit);
}

// At most `count` - 1 units, then zeros up to `count`.
void putFixedText(std::string& bytes, std::u16string_view text, std::size_t count) {
  text = text.substr(0, count - 1);
  putUnits(bytes, text);
  bytes.append(2 * (count - text.size()), '\0');
}

void overwriteWord(std::string& bytes, std::size_t place, std::size_t value) {
  std::string word;
  putWord(word, static_cast<std::uint32_t>(value));
  bytes.replace(place, word.size(), word);
}

// A record from its type to its end: it learns its size, a multiple of 4, when it goes.
class RecordScope {
 public:
  RecordScope(std::string& bytes, std::uint32_t& count, std::uint32_t type)
      : m_bytes(bytes), m_start(bytes.size()) {
    ++count;
    putWord(bytes, type);
    putWord(bytes, 0U);
  }
  RecordScope(const RecordScope&) = delete;
  RecordScope& operator=(const RecordScope&) = delete;
  ~RecordScope() {
    m_bytes.resize((m_bytes.size() + 3) / 4 * 4);
    overwriteWord(m_bytes, m_start + recordSizePlace, m_bytes.size() - m_start);
  }

 private:
  std::string& m_bytes;
  std::size_t m_start;
};

std::int32_t saturated(double value) {
  constexpr double most = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::clamp(std::round(value), -most, most));
}

std::int32_t saturated(std::int64_t value) {
  constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::clamp(value, -most, most));
}

Rect boundsOf(std::span<const Point> points) {
  Rect bounds{points[0].x, points[0].y, points[0].x, points[0].y};
  for (const Point& p : points) {
    bounds.left = std::min(bounds.left, p.x);
    bounds.top = std::min(bounds.top, p.y);
    bounds.right = std::max(bounds.right, p.x);
    bounds.bottom = std::max(bounds.bottom, p.y);
  }
  return bounds;
}

bool fitsShort(const Rect& bounds) {
  constexpr std::int32_t least = std::numeric_limits<std::int16_t>::min();
  constexpr std::int32_t most = std::numeric_limits<std::int16_t>::max();
  return bounds.left >= least && bounds.top >= least && bounds.right <= most &&
         bounds.bottom <= most;
}

// The format's boxes include their right and lower sides.
Rect inclusive(const Rect& box) {
  const Rect r = normalized(box);
  return {r.left, r.top, std::max(r.left, r.right - 1), std::max(r.top, r.bottom - 1)};
}

// Around a box that is turned about its upper left corner, by tenths of a degree.
Rect turnedBox(Point corner, TextExtent extent, std::int32_t escapement) {
  const double angle = escapement / 10.0 * std::numbers::pi / 180;
  const double acrossX = extent.width * std::cos(angle);
  const double acrossY = -extent.width * std::sin(angle);
  const double downX = extent.height * std::sin(angle);
  const double downY = extent.height * std::cos(angle);
  const auto [left, right] = std::minmax({0.0, acrossX, downX, acrossX + downX});
  const auto [top, bottom] = std::minmax({0.0, acrossY, downY, acrossY + downY});
  return {saturated(corner.x + left), saturated(corner.y + top), saturated(corner.x + right),
          saturated(corner.y + bottom)};
}

void putFont(std::string& bytes, const FontDescription& font) {
  const std::size_t start = bytes.size();
  for (const std::int32_t value :
       {font.height, font.width, font.escapement, font.orientation, font.weight})
    putWord(bytes, value);
  for (const std::uint8_t value :
       {font.italic, font.underline, font.strikeOut, font.charSet, font.outPrecision,
        font.clipPrecision, font.quality, font.pitchAndFamily})
    putByte(bytes, value);
  constexpr std::size_t faceUnits = 32;
  putFixedText(bytes, toUtf16(decodeDrawnText(font.face())), faceUnits);
  // Full name, style, version, vendor and the shape's classification are left for the player.
  constexpr std::size_t fontSize = 320;
  bytes.resize(start + fontSize);
}

}  // namespace

MetafileSurface::MetafileSurface(PicturePage page, std::string description)
    : m_page(std::move(page)), m_description(std::move(description)) {}

std::optional<std::string> MetafileSurface::document() const {
  return framed({0, 0, m_page.width - 1, m_page.height - 1});
}

std::optional<std::string> MetafileSurface::croppedDocument() const {
  return framed(m_bounds.value_or(Rect{}));
}

std::optional<std::string> MetafileSurface::framed(const Rect& frame) const {
  std::string file;
  std::uint32_t count = m_recordCount;
  const std::u16string description = toUtf16(decodeDrawnText(m_description));
  // The name of the program, which stays empty, would follow the description.
  const std::uint32_t descriptionUnits = static_cast<std::uint32_t>(description.size()) + 2;
  const double hundredths = 100 * m_page.millimetresPerUnit();
  // A device ten times as large as the page, so that whole millimetres say its density well.
  constexpr double deviceSize = 10;
  const double deviceWidth = deviceSize * m_page.width;
  const double deviceHeight = deviceSize * m_page.height;
  {
    const RecordScope record(file, count, recordHeader);
    putRect(file, m_bounds.value_or(Rect{0, 0, -1, -1}));
    putRect(file, {saturated(frame.left * hundredths), saturated(frame.top * hundredths),
                   saturated((static_cast<double>(frame.right) + 1) * hundredths),
                   saturated((static_cast<double>(frame.bottom) + 1) * hundredths)});
    file += " EMF";
    putWord(file, 0x10000U);  // version
    putWord(file, 0U);        // size and number of records follow below
    putWord(file, 0U);
    putShort(file, handleCount);
    putShort(file, 0);
    putWord(file, descriptionUnits);
    putWord(file, static_cast<std::uint32_t>(headerSize));
    putWord(file, 0U);  // no palette
    putPoint(file, {saturated(deviceWidth), saturated(deviceHeight)});
    putPoint(file, {saturated(deviceWidth * hundredths / 100),
                    saturated(deviceHeight * hundredths / 100)});
    for (int i = 0; i < 3; ++i) putWord(file, 0U);  // no pixel format
    putPoint(file,
             {saturated(deviceWidth * hundredths * 10), saturated(deviceHeight * hundredths * 10)});
    putFixedText(file, description, descriptionUnits);
  }
  constexpr std::size_t endSize = 20;
  const std::size_t size = file.size() + m_records.size() + endSize;
  if (size > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
  file.reserve(size);
  file += m_records;
  {
    const RecordScope record(file, count, recordEnd);
    putWord(file, 0U);
    putWord(file, 16U);  // where a palette would stand
    putWord(file, static_cast<std::uint32_t>(endSize));
  }
  constexpr std::size_t fileSizePlace = 48;
  overwriteWord(file, fileSizePlace, file.size());
  overwriteWord(file, fileSizePlace + 4, count);
  return file;
}

template <class Object, class Write>
void MetafileSurface::replaceObject(Selected<Object>& selected, const Object& object,
                                    std::uint32_t firstNumber, Write write) {
  const std::uint32_t former = selected.number;
  const std::uint32_t number = former == firstNumber ? firstNumber + 1 : firstNumber;
  write(number);
  selectStock(number);
  // Only now, since an object must not be deleted while it is in use.
  if (former != 0) {
    const RecordScope record(m_records, m_recordCount, recordDelete);
    putWord(m_records, former);
  }
  selected = {object, number};
}

void MetafileSurface::selectStock(std::uint32_t object) {
  const RecordScope record(m_records, m_recordCount, recordSelect);
  putWord(m_records, object);
}

void MetafileSurface::selectPen() {
  if (m_selectedPen.object == pen()) return;
  replaceObject(m_selectedPen, pen(), firstPenNumber, [&](std::uint32_t number) {
    const RecordScope record(m_records, m_recordCount, recordCreatePen);
    putWord(m_records, number);
    putWord(m_records, pen().style == PenStyle::solid ? penSolid : penInsideFrame);
    putPoint(m_records, {std::max(pen().width, 0), 0});
    putWord(m_records, pen().color & 0xFFFFFFU);
  });
}

void MetafileSurface::selectBrush(const Brush& brush) {
  if (brush.style != BrushStyle::hollow) applyBackground();
  if (m_selectedBrush.object == brush) return;
  if (brush.style == BrushStyle::hollow) {
    selectStock(hollowBrushStock);
    m_selectedBrush.object = brush;
    return;
  }
  replaceObject(m_selectedBrush, brush, firstBrushNumber, [&](std::uint32_t number) {
    const RecordScope record(m_records, m_recordCount, recordCreateBrush);
    putWord(m_records, number);
    putWord(m_records, isHatch(brush.style) ? brushHatched : brushSolid);
    putWord(m_records, brush.color & 0xFFFFFFU);
    putWord(m_records, isHatch(brush.style) ? static_cast<std::uint32_t>(brush.style) : 0U);
  });
}

void MetafileSurface::selectFont() {
  if (m_selectedFont.object == font()) return;
  replaceObject(m_selectedFont, font(), firstFontNumber, [&](std::uint32_t number) {
    const RecordScope record(m_records, m_recordCount, recordCreateFont);
    putWord(m_records, number);
    putFont(m_records, font());
  });
}

void MetafileSurface::applyBackground() {
  if (m_recordedBackground != backgroundColor()) {
    const RecordScope record(m_records, m_recordCount, recordBackgroundColor);
    putWord(m_records, backgroundColor() & 0xFFFFFFU);
    m_recordedBackground = backgroundColor();
  }
  if (m_recordedMode != backgroundMode()) {
    const RecordScope record(m_records, m_recordCount, recordBackgroundMode);
    putWord(m_records, backgroundMode() == BackgroundMode::opaque ? 2U : 1U);
    m_recordedMode = backgroundMode();
  }
}

void MetafileSurface::include(const Rect& box, std::int32_t margin) {
  const Rect drawn{
      saturated(std::int64_t{box.left} - margin), saturated(std::int64_t{box.top} - margin),
      saturated(std::int64_t{box.right} + margin), saturated(std::int64_t{box.bottom} + margin)};
  if (!m_bounds) m_bounds = drawn;
  m_bounds = Rect{std::min(m_bounds->left, drawn.left), std::min(m_bounds->top, drawn.top),
                  std::max(m_bounds->right, drawn.right), std::max(m_bounds->bottom, drawn.bottom)};
}

void MetafileSurface::line(Point from, Point to) {
  if (from == to) return;
  selectPen();
  const std::array<Point, 2> ends = {from, to};
  include(boundsOf(ends), pen().width / 2);
  if (m_position != from) {
    const RecordScope record(m_records, m_recordCount, recordMoveTo);
    putPoint(m_records, from);
  }
  const RecordScope record(m_records, m_recordCount, recordLineTo);
  putPoint(m_records, to);
  m_position = to;
}

void MetafileSurface::pointsRecord(std::uint32_t shortType, std::uint32_t longType,
                                   std::span<const Point> points) {
  const Rect bounds = boundsOf(points);
  include(bounds, pen().width / 2);
  const bool isShort = fitsShort(bounds);
  const RecordScope record(m_records, m_recordCount, isShort ? shortType : longType);
  putRect(m_records, bounds);
  putWord(m_records, static_cast<std::uint32_t>(points.size()));
  for (const Point& p : points) {
    if (isShort) {
      putShort(m_records, static_cast<std::uint32_t>(p.x));
      putShort(m_records, static_cast<std::uint32_t>(p.y));
    } else {
      putPoint(m_records, p);
    }
  }
}

void MetafileSurface::polyline(std::span<const Point> points) {
  if (points.size() < 2) return;
  selectPen();
  pointsRecord(recordPolyline16, recordPolyline, points);
}

void MetafileSurface::polygon(std::span<const Point> points) {
  if (points.size() < 2) return;
  selectPen();
  selectBrush(brush());
  pointsRecord(recordPolygon16, recordPolygon, points);
}

void MetafileSurface::bezier(std::span<const Point> points) {
  if (points.size() < 4) return;
  selectPen();
  pointsRecord(recordPolyBezier16, recordPolyBezier, points.first(1 + (points.size() - 1) / 3 * 3));
}

void MetafileSurface::bezierPath(std::span<const Point> points) {
  if (points.size() < 4) return;
  selectBrush(brush());
  selectPen();
  { const RecordScope record(m_records, m_recordCount, recordBeginPath); }
  bezier(points);
  { const RecordScope record(m_records, m_recordCount, recordCloseFigure); }
  { const RecordScope record(m_records, m_recordCount, recordEndPath); }
  const RecordScope record(m_records, m_recordCount, recordStrokeAndFillPath);
  putRect(m_records, boundsOf(points));
}

void MetafileSurface::boxRecord(std::uint32_t type, const Rect& box, std::span<const Point> more) {
  selectPen();
  const Rect r = inclusive(box);
  include(r, pen().style == PenStyle::insideFrame ? 0 : pen().width / 2);
  const RecordScope record(m_records, m_recordCount, type);
  putRect(m_records, r);
  for (const Point& p : more) putPoint(m_records, p);
}

void MetafileSurface::rectangle(const Rect& box) {
  selectBrush(brush());
  boxRecord(recordRectangle, box);
}

void MetafileSurface::roundedRectangle(const Rect& box, std::int32_t cornerWidth,
                                       std::int32_t cornerHeight) {
  selectBrush(brush());
  boxRecord(recordRoundRectangle, box, std::array{Point{cornerWidth, cornerHeight}});
}

void MetafileSurface::ellipse(const Rect& box) {
  selectBrush(brush());
  boxRecord(recordEllipse, box);
}

void MetafileSurface::arc(const Rect& box, Point start, Point end) {
  boxRecord(recordArc, box, std::array{start, end});
}

void MetafileSurface::chord(const Rect& box, Point start, Point end) {
  selectBrush(brush());
  boxRecord(recordChord, box, std::array{start, end});
}

void MetafileSurface::pie(const Rect& box, Point start, Point end) {
  selectBrush(brush());
  boxRecord(recordPie, box, std::array{start, end});
}

void MetafileSurface::fillArea(const Rect& area, ColorRef color) {
  if (area.width() <= 0 || area.height() <= 0) return;
  selectBrush({BrushStyle::solid, color});
  selectStock(noPenStock);
  include(inclusive(area), 0);
  {
    // Without a pen a rectangle ends one unit earlier.
    const RecordScope record(m_records, m_recordCount, recordRectangle);
    putRect(m_records, area);
  }
  m_selectedPen.object.reset();
}

void MetafileSurface::text(Point corner, std::string_view bytes) {
  const std::u32string characters = decodeDrawnText(bytes);
  const std::u16string units = toUtf16(characters);
  if (units.empty()) return;
  selectFont();
  applyBackground();
  if (m_recordedTextColor != textColor()) {
    const RecordScope record(m_records, m_recordCount, recordTextColor);
    putWord(m_records, textColor() & 0xFFFFFFU);
    m_recordedTextColor = textColor();
  }
  const TextExtent extent = textExtent(font(), bytes);
  const Rect bounds = turnedBox(corner, extent, font().escapement);
  include(bounds, 0);

  const RecordScope record(m_records, m_recordCount, recordText);
  putRect(m_records, bounds);
  putWord(m_records, compatibleMode);
  const auto scale =
      std::bit_cast<std::uint32_t>(static_cast<float>(100 * m_page.millimetresPerUnit()));
  putWord(m_records, scale);
  putWord(m_records, scale);
  putPoint(m_records, corner);
  const auto count = static_cast<std::uint32_t>(units.size());
  constexpr std::uint32_t textPlace = 76;
  putWord(m_records, count);
  putWord(m_records, textPlace);
  putWord(m_records, noTextRectangle);
  putRect(m_records, {0, 0, -1, -1});
  putWord(m_records, textPlace + (count + 1) / 2 * 4);
  putUnits(m_records, units);
  if (count % 2 != 0) m_records.append(2, '\0');
  putAdvances(characters);
}

// Whole units between the starts of characters; their sums are off by half a unit at most.
void MetafileSurface::putAdvances(std::u32string_view text) {
  double exact = 0;
  std::int32_t written = 0;
  for (const char32_t c : text) {
    exact += advanceOf(font(), c);
    const std::int32_t next = saturated(exact);
    putWord(m_records, next - written);
    written = next;
    if (c >= 0x10000) putWord(m_records, 0U);  // the second half of a pair
  }
}

}  // namespace vexa
