// The sixteen classes, in the order of their type codes.

#include <algorithm>
#include <array>
#include <cstddef>

#include "graphics/figures/boxes.h"
#include "graphics/figures/curves.h"
#include "graphics/figures/lines.h"
#include "graphics/figures/texts.h"

namespace vexa {

namespace {

constexpr std::uint16_t figureSchema = 3;

template <class Figure>
std::unique_ptr<CFigure> make() {
  return std::make_unique<Figure>();
}

constexpr std::array<RuntimeClass, 16> classes{{
    {"CLine", figureSchema, make<CLine>},
    {"CLineArrow", figureSchema, make<CLineArrow>},
    {"CLineArrows", figureSchema, make<CLineArrows>},
    {"CArrowsUDL", figureSchema, make<CArrowsUDL>},
    {"CFontItem", figureSchema, make<CFontItem>},
    {"CRectangle", figureSchema, make<CRectangle>},
    {"CRectFill", figureSchema, make<CRectFill>},
    {"CRectRound", figureSchema, make<CRectRound>},
    {"CRectRoundFill", figureSchema, make<CRectRoundFill>},
    {"CCircle", figureSchema, make<CCircle>},
    {"CCircleFill", figureSchema, make<CCircleFill>},
    {"CPolygon", figureSchema, make<CPolygon>},
    {"CBezier", figureSchema, make<CBezier>},
    {"CEllipse", figureSchema, make<CEllipse>},
    {"CPie", figureSchema, make<CPie>},
    {"CText", figureSchema, make<CText>},
}};

}  // namespace

const RuntimeClass& runtimeClass(FigureType type) {
  return classes[static_cast<std::size_t>(type) - 1];
}

const RuntimeClass* findRuntimeClass(std::string_view name) {
  const auto found = std::ranges::find(classes, name, &RuntimeClass::name);
  return found == classes.end() ? nullptr : &*found;
}

// A drawing of many lines must not cost more than a line is worth.
static_assert(sizeof(CLine) <= 48);

}  // namespace vexa
