#pragma once

// Ctrl-C as a flag that the interpreter asks for now and then.

namespace vexa {

// From now on Ctrl-C sets the flag. Pressed again before anybody has noticed, it ends the process
// with status 130.
void catchInterrupts();
bool interruptPending();
// Tells whether Ctrl-C was pressed, and forgets it.
bool takeInterrupt();
// Waits until a file descriptor can be read, a time is over, or Ctrl-C is or was pressed; it may
// return sooner. A negative descriptor or time means none.
void waitUnlessInterrupted(int descriptor, double seconds);

}  // namespace vexa
