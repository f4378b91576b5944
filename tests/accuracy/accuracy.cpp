// vexa_accuracy: prints, for every function with reference values, how many there are, the worst
// error and where it is met. With the argument "rows" as comma-separated values for a script,
// the last field the units of all rows.

#include <cstdio>
#include <cstring>

#include "support/accuracy_table.h"

namespace vexa {
namespace {

void printTable() {
  std::printf("%-18s %5s %9s %9s  %-12s %s\n", "function", "rows", "worst", "allowed", "unit",
              "worst at");
  for (const AccuracyEntry& entry : accuracyTable()) {
    const WorstError worst = worstError(entry);
    std::printf("%-18s %5zu %9.3g %9.3g  %-12s", entry.name.data(), worst.rows, worst.units,
                entry.allowed, entry.unit.data());
    if (!worst.row.text.empty()) std::printf(" %s", worst.row.text.c_str());
    for (const double argument : worst.row.arguments) std::printf(" %.17g", argument);
    std::printf("\n");
  }
}

void printRows() {
  for (const AccuracyEntry& entry : accuracyTable()) {
    const WorstError worst = worstError(entry);
    std::printf("\"%s\",%s,%.17g,\"%s\",", entry.name.data(), entry.file.data(), worst.units,
                entry.unit.data());
    for (const ReferenceRow& row : referenceRows(std::string(entry.file)))
      std::printf("%.17g ", entry.unitOf(row));
    std::printf("\n");
  }
}

}  // namespace
}  // namespace vexa

int main(int argc, char** argv) {
  if (argc == 2 && std::strcmp(argv[1], "rows") == 0) {
    vexa::printRows();
  } else {
    vexa::printTable();
  }
}
