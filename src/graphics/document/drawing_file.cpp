#include "graphics/document/drawing_file.h"

// Header, in file order (32-bit words unless stated):
//
//   format number, 6501
//   picture left margin, picture top margin
//   x minimum, y minimum, x maximum, y maximum, x scale, y scale   doubles
//   scale flags
//   pen color, its index; background color, its index; fill color, its index
//   pen width, fill style
//   axes style, orientation
//   width, height
//   title                                                           text
//   marker size
//
// Figures: a count, then for each figure a tag, where the class appears for the first time a class
// record, and the fields. Classes and figures are numbered together from 1 in the order in which
// they first appear.
//
//   FFFF, schema, length of name, name, fields     a figure of a new class
//   8000 + class number, fields                    a figure of a known class
//   7FFF, 80000000 + class number (32), fields     the same from number 7FFF on
//   number of a figure                             that figure once more
//   7FFF, number of a figure (32)                  the same from number 7FFF on
//   0000                                           no figure

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "graphics/figures/curves.h"
#include "graphics/figures/texts.h"

namespace vexa {

namespace {

constexpr std::int32_t oldestFormat = 6501;
constexpr std::int32_t foreignFormat = 20101946;

constexpr std::uint16_t nullTag = 0;
constexpr std::uint16_t newClassTag = 0xFFFF;
constexpr std::uint16_t longTag = 0x7FFF;
constexpr std::uint16_t classBit = 0x8000;
constexpr std::uint32_t longClassBit = 0x80000000;

void serializeHeader(DrawingArchive& archive, DrawingSettings& s) {
  archive.word(s.pictureLeft);
  archive.word(s.pictureTop);
  for (double& value : s.world) archive.real(value);
  archive.word(s.scaleFlags);
  archive.word(s.penColor);
  archive.word(s.penColorIndex);
  archive.word(s.backgroundColor);
  archive.word(s.backgroundColorIndex);
  archive.word(s.fillColor);
  archive.word(s.fillColorIndex);
  archive.word(s.penWidth);
  archive.word(s.fillStyle);
  archive.word(s.axesStyle);
  archive.word(s.orientation);
  archive.word(s.width);
  archive.word(s.height);
  archive.text(s.title);
  archive.word(s.markerSize);
}

// Writing numbers only classes by name: no figure stands in the list twice.
class FigureWriter {
 public:
  explicit FigureWriter(DrawingArchive& archive) : m_archive(archive) {}

  void write(CFigure& figure) {
    const RuntimeClass& figureClass = figure.GetRuntimeClass();
    std::uint32_t& number = numberOf(figureClass);
    if (number == 0) {
      writeClass(figureClass);
      number = m_nextNumber++;
    } else {
      writeTag(number);
    }
    ++m_nextNumber;
    figure.Serialize(m_archive);
  }

 private:
  std::uint32_t& numberOf(const RuntimeClass& figureClass) {
    const auto place = &figureClass - &runtimeClass(FigureType::line);
    return m_classNumbers[static_cast<std::size_t>(place)];
  }

  void writeClass(const RuntimeClass& figureClass) {
    std::uint16_t tag = newClassTag;
    std::uint16_t schema = figureClass.schema;
    auto length = static_cast<std::uint16_t>(figureClass.name.size());
    std::string name(figureClass.name);
    m_archive.halfWord(tag);
    m_archive.halfWord(schema);
    m_archive.halfWord(length);
    m_archive.characters(name, name.size());
  }

  void writeTag(std::uint32_t classNumber) {
    const bool isShort = classNumber < longTag;
    auto tag = isShort ? static_cast<std::uint16_t>(classBit | classNumber) : longTag;
    m_archive.halfWord(tag);
    std::uint32_t number = longClassBit | classNumber;
    if (!isShort) m_archive.word(number);
  }

  DrawingArchive& m_archive;
  std::array<std::uint32_t, 16> m_classNumbers{};
  std::uint32_t m_nextNumber = 1;
};

// The memory behind a figure that its fields do not hold themselves.
std::size_t payload(const CFigure& figure) {
  if (const auto* text = dynamic_cast<const CText*>(&figure)) return text->m_Text.size();
  if (const auto* polygon = dynamic_cast<const CPolygon*>(&figure))
    return polygon->m_Points.size() * sizeof(Point);
  if (const auto* curve = dynamic_cast<const CBezier*>(&figure))
    return curve->m_Points.size() * sizeof(Point);
  return 0;
}

class FigureReader {
 public:
  FigureReader(DrawingArchive& archive, CMiniDrawDoc& document)
      : m_archive(archive),
        m_document(document),
        m_copyAllowance(copyFloor + copiesOfFile * archive.remaining()) {}

  // Reads one entry of the list; after a failure nothing is appended.
  void read() {
    std::uint16_t tag = nullTag;
    m_archive.halfWord(tag);
    if (m_archive.failed() || tag == nullTag) return;
    if (tag == newClassTag) return readFigure(readClass());
    if (tag != longTag) return readNumbered((tag & classBit) != 0, tag & ~classBit);
    std::uint32_t number = 0;
    m_archive.word(number);
    readNumbered((number & longClassBit) != 0, number & ~longClassBit);
  }

 private:
  // A text of a million characters may be repeated by two bytes, so copies are rationed.
  static constexpr std::size_t copyFloor = std::size_t{16} << 20;
  static constexpr std::size_t copiesOfFile = 16;

  // What a number stands for: a class, or else the figure at a position of the list.
  struct Numbered {
    const RuntimeClass* figureClass = nullptr;
    std::size_t position = 0;
  };

  const RuntimeClass* readClass() {
    std::uint16_t schema = 0;
    std::uint16_t length = 0;
    std::string name;
    m_archive.halfWord(schema);
    m_archive.halfWord(length);
    m_archive.characters(name, length);
    if (m_archive.failed()) return nullptr;
    const RuntimeClass* figureClass = findRuntimeClass(name);
    if (!figureClass)
      m_archive.fail(ArchiveError::unknownClass);
    else if (schema != figureClass->schema)
      m_archive.fail(ArchiveError::badSchema);
    m_numbers.push_back({figureClass, 0});
    return figureClass;
  }

  void readNumbered(bool isClass, std::uint32_t number) {
    if (m_archive.failed()) return;
    if (number == 0 && !isClass) return;
    const bool known = number >= 1 && number <= m_numbers.size();
    if (!known || (m_numbers[number - 1].figureClass != nullptr) != isClass)
      return m_archive.fail(ArchiveError::badIndex);
    const Numbered entry = m_numbers[number - 1];
    if (isClass)
      readFigure(entry.figureClass);
    else
      repeat(*m_document.figure(static_cast<std::ptrdiff_t>(entry.position)));
  }

  void readFigure(const RuntimeClass* figureClass) {
    if (m_archive.failed()) return;
    std::unique_ptr<CFigure> figure = figureClass->create();
    figure->Serialize(m_archive);
    if (m_archive.failed()) return;
    m_numbers.push_back({nullptr, m_document.add(std::move(figure))});
  }

  void repeat(const CFigure& figure) {
    const std::size_t size = payload(figure);
    if (size > m_copyAllowance) return m_archive.fail(ArchiveError::tooManyCopies);
    m_copyAllowance -= size;
    figure.Duplicate(m_document);
  }

  DrawingArchive& m_archive;
  CMiniDrawDoc& m_document;
  std::vector<Numbered> m_numbers;
  std::size_t m_copyAllowance;
};

void readFigures(DrawingArchive& archive, CMiniDrawDoc& document) {
  std::uint32_t count = 0;
  archive.count(count);
  if (archive.failed()) return;
  document.removeFigures(0, document.figureCount());
  FigureReader reader(archive, document);
  for (std::uint32_t i = 0; i < count && !archive.failed(); ++i) reader.read();
}

}  // namespace

std::string_view loadMessage(const DrawingLoad& load) {
  if (load.error != ArchiveError::none) return archiveMessage(load.error);
  return load.accepted ? "" : "File format corrupted";
}

DrawingLoad readDrawing(std::string_view bytes, CMiniDrawDoc& document) {
  DrawingArchive archive(bytes);
  std::int32_t format = 0;
  archive.word(format);
  if (archive.failed()) return {false, archive.error()};
  if (format < oldestFormat || format == foreignFormat) return {};
  document.settings().formatNumber = format;
  serializeHeader(archive, document.settings());
  if (!archive.failed()) readFigures(archive, document);
  document.setModified(false);
  return {true, archive.error()};
}

std::string writeDrawing(const CMiniDrawDoc& document) {
  DrawingArchive archive;
  // An archive that stores only reads what it is given, but takes it by reference to be able to do
  // the other.
  DrawingSettings settings = document.settings();
  archive.word(settings.formatNumber);
  serializeHeader(archive, settings);
  auto count = static_cast<std::uint32_t>(document.figureCount());
  archive.count(count);
  FigureWriter writer(archive);
  for (std::uint32_t i = 0; i < count; ++i) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): as said above
    writer.write(const_cast<CFigure&>(*document.figure(i)));
  }
  return archive.takeOutput();
}

}  // namespace vexa
