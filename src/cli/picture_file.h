#pragma once

// Drawings written to files, in the format that the extension names.

#include <cstddef>
#include <string>

#include "cli/picture_options.h"
#include "graphics/document/mini_draw_doc.h"

namespace vexa {

// What stands in the way of writing such a file, one line, as far as that is known before there is
// a drawing; empty for nothing. The path has one of the extensions.
std::string obstacleTo(const std::string& path);

// The path of one of several pictures, counted from 1: a second and later one has its number before
// the extension.
std::string numberedPath(const std::string& path, std::size_t number);

// Writes the file whole or not at all. Gives what went wrong, one line, or an empty text.
std::string writePicture(CMiniDrawDoc& document, const std::string& path,
                         const PictureOptions& options);

}  // namespace vexa
