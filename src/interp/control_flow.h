#pragma once

// The statements if, while, do, for and switch. Each is entered with its keyword as the current
// token and branches and bodies that are not taken are passed over by counting brackets.

#include "values/scanner.h"

namespace vexa {

// Whether a class asks the enclosing statements to stop.
inline bool stopsSequence(int tokenClass) {
  return tokenClass == classReturn || tokenClass == classBreak || tokenClass == classContinue;
}

void executeIf();
// True when the cursor went back to the keyword for another turn.
bool executeWhile();
bool executeDo();
void executeFor();
void executeSwitch();

}  // namespace vexa
