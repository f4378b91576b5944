#pragma once

// The global-variables file: a magic, a count, the display setting, and every global variable with
// its name. docs/globals-file-format.md shows its bytes.

#include <cstdint>
#include <string>

#include "interp/binary_file.h"

namespace vexa {

// What the count of a file states: one more than the number of variables.
std::int32_t globalsFileCount();
// Writes all globals, presets included, in the order in which they were made. False when the file
// could not take everything.
bool writeGlobals(BinaryFile& file);

enum class GlobalsOutcome {
  complete,
  notADataFile,  // the magic is missing
  damaged,       // a record makes no sense or breaks off
  noMemory,
  localConflict,  // a record has the name of a local matrix; those before it are merged
};

// Merges the variables of a file into the globals. The whole file is examined first: of one that is
// damaged nothing is taken. It may end before the count is reached, as every file that writeGlobals
// made does. Raises the conflict of a name that means something else: keys 17, 18, 21, 51, 69.
// `conflict` is the name of a local conflict.
GlobalsOutcome readGlobals(BinaryFile& file, std::string& conflict);

}  // namespace vexa
