#include "numlib/calculus/clp_library.h"

#include <dlfcn.h>

namespace vexa {

namespace {

template <class Function>
bool find(void* library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(dlsym(library, name));
  return function != nullptr;
}

bool findAll(void* library, ClpLibrary& clp) {
  return find(library, "Clp_newModel", clp.newModel) &&
         find(library, "Clp_deleteModel", clp.deleteModel) &&
         find(library, "Clp_loadProblem", clp.loadProblem) &&
         find(library, "Clp_setLogLevel", clp.setLogLevel) &&
         find(library, "Clp_setPrimalTolerance", clp.setPrimalTolerance) &&
         find(library, "Clp_setDualTolerance", clp.setDualTolerance) &&
         find(library, "Clp_setMaximumIterations", clp.setMaximumIterations) &&
         find(library, "Clp_numberIterations", clp.numberIterations) &&
         find(library, "Clp_chgRowLower", clp.changeRowLow) &&
         find(library, "Clp_chgRowUpper", clp.changeRowHigh) &&
         find(library, "Clp_chgColumnLower", clp.changeColumnLow) &&
         find(library, "Clp_chgColumnUpper", clp.changeColumnHigh) &&
         find(library, "Clp_primal", clp.primal) && find(library, "Clp_dual", clp.dual) &&
         find(library, "Clp_status", clp.status) &&
         find(library, "Clp_primalColumnSolution", clp.columnSolution) &&
         find(library, "Clp_dualRowSolution", clp.rowPrices);
}

std::unique_ptr<const ClpLibrary> open() {
  void* const library = dlopen("libClp.so.1", RTLD_NOW | RTLD_LOCAL);
  if (!library) return nullptr;
  auto clp = std::make_unique<ClpLibrary>();
  if (findAll(library, *clp)) return clp;
  dlclose(library);
  return nullptr;
}

}  // namespace

const ClpLibrary* openClp() {
  static const std::unique_ptr<const ClpLibrary> library = open();
  return library.get();
}

}  // namespace vexa
