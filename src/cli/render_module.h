#pragma once

// The module that draws PNG and PDF, opened at the first picture that needs it.

#include <string>

#include "graphics/surfaces/render_module.h"

namespace vexa {

// Null with a `problem`, one line, when there is no module or it does not fit.
OpenPicture* findRenderModule(std::string& problem);

}  // namespace vexa
