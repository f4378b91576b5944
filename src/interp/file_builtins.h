#pragma once

// The built-ins of data files. File names come from the front's file dialog, never from a program.

namespace vexa {

// Give the number of the opened file, or -1.
double openfiletowriteBuiltin();
double openfiletoreadBuiltin();
// writefile(id, item {, item})
double writefileBuiltin();
// readfile(id, name {, name})
double readfileBuiltin();
double rewindfileBuiltin();
double closefileBuiltin();
double closeallfilesBuiltin();
// saveglobalvars, readglobalvars
double globalvarsBuiltin();

}  // namespace vexa
