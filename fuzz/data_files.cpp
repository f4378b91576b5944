// Reads arbitrary bytes as a data file and as a file of global variables: whatever a file holds, no
// more memory is taken than it could fill, and a file that is refused leaves the globals as they
// were.

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "interp/data_files.h"
#include "interp/globals_file.h"
#include "interp/interpreter_state.h"
#include "interp/silent_shell.h"

namespace {

using namespace vexa;

constexpr std::uint64_t bytesForEachByte = 16;  // an element and its part of a row table
constexpr std::uint64_t matrixOverhead = 64;

// A file in memory, and a real one: its size is asked of the system.
BinaryFile open(const std::uint8_t* data, std::size_t size) {
  const int descriptor = ::memfd_create("bytes", MFD_CLOEXEC);
  if (descriptor < 0 || ::write(descriptor, data, size) != static_cast<ssize_t>(size) ||
      ::lseek(descriptor, 0, SEEK_SET) != 0) {
    std::abort();
  }
  std::FILE* stream = ::fdopen(descriptor, "rb");
  if (!stream) std::abort();
  return {stream, "bytes", BinaryFile::Purpose::read};
}

void readRecords(BinaryFile file, std::size_t size) {
  DataRecord record;
  while (readRecord(file, record) == RecordOutcome::complete) {
    if (record.text && record.text->size() >= longestRecordText) std::abort();
    if (matrixMemoryInUse() > bytesForEachByte * size + matrixOverhead) std::abort();
  }
}

void mergeGlobals(BinaryFile file, std::size_t size) {
  InterpreterState& state = interpreter();
  const int floats = state.names.floatCount();
  std::string conflict;
  GlobalsOutcome outcome = GlobalsOutcome::complete;
  state.evaluating = true;
  try {
    outcome = readGlobals(file, conflict);
  } catch (const RunAbandoned&) {
    return;
  }
  state.evaluating = false;
  if (outcome == GlobalsOutcome::damaged &&
      (state.names.floatCount() != floats || state.names.matrixCount() != 0))
    std::abort();
  if (matrixMemoryInUse() > bytesForEachByte * size + matrixOverhead * size) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  SilentShell shell;
  shell.dropOutput();
  {
    const InterpreterScope scope(shell);
    readRecords(open(data, size), size);
    mergeGlobals(open(data, size), size);
  }
  if (matrixMemoryInUse() != 0) std::abort();
  return 0;
}
