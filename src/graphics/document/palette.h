#pragma once

// The colors that drawings offer by number.

#include <array>
#include <cstdint>
#include <string_view>

#include "graphics/surfaces/drawing_types.h"

namespace vexa {

struct PaletteColor {
  ColorRef color;
  std::string_view name;
};

// clang-format off
inline constexpr std::array<PaletteColor, 16> palette{{
    {0x000000, "black"},      {0xFF0000, "blue"},
    {0x008000, "green"},      {0xFFFF00, "cyan"},
    {0x0000FF, "red"},        {0xFF00FF, "magenta"},
    {0x004080, "brown"},      {0xC0C0C0, "light grey"},
    {0x808080, "grey"},       {0xFF8000, "light blue"},
    {0x80FF80, "light green"}, {0xFFFF80, "light cyan"},
    {0x8080FF, "light red"},  {0xFF80FF, "light magenta"},
    {0x00FFFF, "yellow"},     {0xFFFFFF, "white"},
}};
// clang-format on

// The index of a color that was picked freely.
inline constexpr std::int32_t freeColorIndex = 16;

// The fill styles in the order in which menus offer them.
inline constexpr std::array<std::int32_t, 8> fillMenu{1, 3, 4, 5, 2, 0, 6, 7};

}  // namespace vexa
