#pragma once

// The course of a run, from the Execute command to its end, and the program update.

#include "interp/shell.h"

namespace vexa {

// The Execute command. False when nothing was started.
bool executeProgram(TextDocument& program);
// Makes a document the program document and takes its text without running it. False, after a
// message where one is due, when the text could not be taken.
bool takeProgram(TextDocument& program);
// Chooses where printed text goes: mode 1 takes the active document, mode 2 finds or creates one.
bool chooseOutputDocument(int mode);
// Starts the prepared program text: reset, pre-scan, `main`. False without `main` and functions.
bool startRun();
// Forgets the last run: names, frames, temporaries and the error list. Every display is told.
void resetInterpreterState();
// Executes the global declarations of the text from the scan position on and registers its
// functions; the position is as before then.
void preScan();
// Shows the warnings about unbalanced brackets, which stop nothing; leaves the scan position.
void checkBalance();
// Registers the functions of the changed program text, so that calculators may call them. True
// when the functions are current.
bool updateProgram();

}  // namespace vexa
