// The C interface of Clp 1.17, as far as it is used, opened at run time.
#pragma once

#include <memory>

namespace vexa {

struct ClpModel;  // the library's own

struct ClpLibrary {
  ClpModel* (*newModel)();
  void (*deleteModel)(ClpModel*);
  // Column by column: starts of the columns (one more than columns), row indices, values; bounds of
  // the columns, costs, bounds of the rows.
  void (*loadProblem)(ClpModel*, int columns, int rows, const int* starts, const int* indices,
                      const double* values, const double* columnLow, const double* columnHigh,
                      const double* costs, const double* rowLow, const double* rowHigh);
  void (*setLogLevel)(ClpModel*, int level);
  void (*setPrimalTolerance)(ClpModel*, double tolerance);
  void (*setDualTolerance)(ClpModel*, double tolerance);
  void (*setMaximumIterations)(ClpModel*, int count);
  int (*numberIterations)(ClpModel*);
  void (*changeRowLow)(ClpModel*, const double* rowLow);
  void (*changeRowHigh)(ClpModel*, const double* rowHigh);
  void (*changeColumnLow)(ClpModel*, const double* columnLow);
  void (*changeColumnHigh)(ClpModel*, const double* columnHigh);
  int (*primal)(ClpModel*, int valuesPass);
  int (*dual)(ClpModel*, int valuesPass);
  int (*status)(ClpModel*);
  double* (*columnSolution)(ClpModel*);
  double* (*rowPrices)(ClpModel*);
};

// Null when the library is not installed. It stays open until the process ends.
const ClpLibrary* openClp();

}  // namespace vexa
