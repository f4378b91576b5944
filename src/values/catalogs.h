#pragma once

namespace vexa {

// cat: lists the variables that a program can see.
double catBuiltin();

}  // namespace vexa
