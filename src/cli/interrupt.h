#pragma once

// Ctrl-C as a flag that the interpreter asks for now and then.

namespace vexa {

// From now on Ctrl-C sets the flag. Pressed again before anybody has noticed, it ends the process
// with status 130.
void catchInterrupts();
bool interruptPending();
// Tells whether Ctrl-C was pressed, and forgets it.
bool takeInterrupt();

}  // namespace vexa
