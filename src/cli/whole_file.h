#pragma once

// Files that are written whole or not at all.

#include <string>
#include <string_view>

namespace vexa {

// Writes to a temporary file beside the target, has it on the disk, and puts it in the target's
// place; links are followed and permissions kept. What is no plain file (a device, a pipe) is
// written directly. Gives 0 or an errno.
int writeWholeFile(const std::string& path, std::string_view bytes);

// Whether such a write can begin, before the work that makes the bytes: 0 or an errno.
int checkWritable(const std::string& path);

// What to do about an errno of these, for the end of a message.
std::string_view remedyForWriting(int error);

}  // namespace vexa
