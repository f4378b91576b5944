#pragma once

// What the command line says about a picture.

#include <optional>
#include <string_view>

namespace vexa {

enum class PictureFormat { drw, svg, png, pdf, emf };

inline constexpr std::string_view pictureExtensions = ".drw, .svg, .png, .pdf or .emf";

inline constexpr double lowestDensity = 10;
inline constexpr double highestDensity = 2400;
inline constexpr double narrowestPicture = 1;  // mm
inline constexpr double widestPicture = 5000;

struct PictureOptions {
  bool screen = false;  // the drawing's own background
  double density = 96;  // of PNG, dots per inch
  double width = 0;     // mm; 0 for 96 units to an inch
};

// By the extension, in either case; nothing for any other.
std::optional<PictureFormat> pictureFormatOf(std::string_view path);

}  // namespace vexa
