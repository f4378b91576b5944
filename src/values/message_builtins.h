#pragma once

// Handlers that speak with the person in front of the screen, all through the shell.

namespace vexa {

// notice, yesno, postmessage, isvar
double messageBuiltin();
// hidemessage
double hidemessageBuiltin();
// view, select, debugview
double viewBuiltin();
// calc
double calcBuiltin();
// sleep
double sleepBuiltin();
// gotourl
double gotourlBuiltin();
// t#
double elapsedTimeBuiltin();

}  // namespace vexa
