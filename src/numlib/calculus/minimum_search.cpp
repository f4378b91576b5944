#include "numlib/calculus/minimum_search.h"

#include <dlfcn.h>
#include <nlopt.h>

#include <algorithm>
#include <cmath>
#include <exception>
#include <limits>
#include <memory>
#include <new>
#include <type_traits>

namespace vexa {

namespace {

constexpr int mostRounds = 6;
constexpr double laterSteps = 0.01;  // of the first round's
constexpr double placeTolerance = 1e-12;
constexpr double valueTolerance = 1e-16;

// The routines of NLopt that are called, from the library that is opened at the first search. It
// stays open until the process ends.
class NloptLibrary {
 public:
  // Null when the library is absent or lacks what we call.
  static const NloptLibrary* get() {
    static const std::unique_ptr<const NloptLibrary> library = open();
    return library.get();
  }

  decltype(&nlopt_create) create = nullptr;
  decltype(&nlopt_destroy) destroy = nullptr;
  decltype(&nlopt_set_min_objective) setObjective = nullptr;
  decltype(&nlopt_set_lower_bounds) setLowerBounds = nullptr;
  decltype(&nlopt_set_upper_bounds) setUpperBounds = nullptr;
  decltype(&nlopt_set_initial_step) setInitialStep = nullptr;
  decltype(&nlopt_set_xtol_rel) setPlaceTolerance = nullptr;
  decltype(&nlopt_set_ftol_rel) setValueTolerance = nullptr;
  decltype(&nlopt_set_maxeval) setMostEvaluations = nullptr;
  decltype(&nlopt_force_stop) forceStop = nullptr;
  decltype(&nlopt_optimize) optimize = nullptr;

 private:
  template <class Routine>
  static bool find(void* library, const char* name, Routine& routine) {
    routine = reinterpret_cast<Routine>(dlsym(library, name));
    return routine != nullptr;
  }

  static std::unique_ptr<const NloptLibrary> open() {
    void* const library = dlopen("libnlopt.so.0", RTLD_NOW | RTLD_LOCAL);
    if (!library) return nullptr;
    auto found = std::make_unique<NloptLibrary>();
    if (find(library, "nlopt_create", found->create) &&
        find(library, "nlopt_destroy", found->destroy) &&
        find(library, "nlopt_set_min_objective", found->setObjective) &&
        find(library, "nlopt_set_lower_bounds", found->setLowerBounds) &&
        find(library, "nlopt_set_upper_bounds", found->setUpperBounds) &&
        find(library, "nlopt_set_initial_step", found->setInitialStep) &&
        find(library, "nlopt_set_xtol_rel", found->setPlaceTolerance) &&
        find(library, "nlopt_set_ftol_rel", found->setValueTolerance) &&
        find(library, "nlopt_set_maxeval", found->setMostEvaluations) &&
        find(library, "nlopt_force_stop", found->forceStop) &&
        find(library, "nlopt_optimize", found->optimize))
      return found;
    dlclose(library);
    return nullptr;
  }
};

class MinimumSearch {
 public:
  MinimumSearch(const NloptLibrary& library, FieldFunction f, std::span<const double> start,
                const SearchLimits& limits)
      : m_library(library),
        m_f(f),
        m_limits(limits),
        m_place(start.begin(), start.end()),
        m_lower(bounds(limits.lower, -HUGE_VAL)),
        m_upper(bounds(limits.upper, HUGE_VAL)) {
    for (std::size_t i = 0; i < m_place.size(); ++i)
      m_place[i] = std::clamp(m_place[i], m_lower[i], m_upper[i]);
    for (std::size_t i = 0; i < m_place.size(); ++i) m_free += m_lower[i] < m_upper[i];
  }

  SearchResult run() {
    m_value = m_worst = m_f(m_place);
    if (!std::isfinite(m_value)) return result(SearchOutcome::notFinite);
    if (m_free == 0) return result(SearchOutcome::done);
    for (int round = 0; round < mostRounds; ++round) {
      const double before = m_value;
      const bool ended = runRound(round);
      if (m_withoutMinimum) return result(SearchOutcome::withoutMinimum);
      const double noise = m_limits.accuracy * std::max(std::fabs(m_value), m_limits.accuracy);
      if (round > 0 && ended && before - m_value <= noise) return result(SearchOutcome::done);
    }
    return result(SearchOutcome::notReached);
  }

 private:
  struct Destroyer {
    const NloptLibrary* library;
    void operator()(nlopt_opt optimizer) const { library->destroy(optimizer); }
  };
  using Optimizer = std::unique_ptr<std::remove_pointer_t<nlopt_opt>, Destroyer>;

  std::vector<double> bounds(std::span<const double> given, double none) const {
    std::vector<double> result(m_place.size(), none);
    std::ranges::copy(given, result.begin());
    return result;
  }

  SearchResult result(SearchOutcome outcome) const { return {m_value, m_place, outcome}; }

  // BOBYQA's models need two variables; NLopt drops those whose bounds meet.
  bool usesSimplex(int round) const { return m_free < 2 || round % 2 == 1; }

  std::vector<double> steps(double scale) const {
    std::vector<double> result(m_place.size());
    for (std::size_t i = 0; i < result.size(); ++i) {
      const double step = scale * std::max(0.1 * std::fabs(m_place[i]), 0.1);
      // BOBYQA refuses steps that do not fit between the bounds twice.
      const double room = (m_upper[i] - m_lower[i]) / 4;
      result[i] = room > 0 ? std::min(step, room) : step;
    }
    return result;
  }

  // False when the round ended because its evaluations were used up.
  bool runRound(int round) {
    const auto algorithm = usesSimplex(round) ? NLOPT_LN_NELDERMEAD : NLOPT_LN_BOBYQA;
    const Optimizer optimizer(m_library.create(algorithm, static_cast<unsigned>(m_place.size())),
                              Destroyer{&m_library});
    if (!optimizer) throw std::bad_alloc();
    m_optimizer = optimizer.get();
    m_library.setObjective(m_optimizer, &MinimumSearch::callback, this);
    m_library.setLowerBounds(m_optimizer, m_lower.data());
    m_library.setUpperBounds(m_optimizer, m_upper.data());
    m_library.setInitialStep(m_optimizer, steps(round == 0 ? 1 : laterSteps).data());
    m_library.setPlaceTolerance(m_optimizer, placeTolerance);
    m_library.setValueTolerance(m_optimizer, valueTolerance);
    const auto most = m_limits.evaluations * static_cast<double>(m_place.size() + 1);
    m_library.setMostEvaluations(m_optimizer, static_cast<int>(std::min(most, 1e9)));
    std::vector<double> place = m_place;
    double value = 0;
    // Ends at the limit of rounding are as good as others; the best point is kept here anyway.
    const nlopt_result end = m_library.optimize(m_optimizer, place.data(), &value);
    if (m_fault) std::rethrow_exception(m_fault);
    return end != NLOPT_MAXEVAL_REACHED;
  }

  // What f throws must not pass through the library: it is kept and thrown again behind it.
  static double callback(unsigned n, const double* x, double*, void* data) {
    auto& search = *static_cast<MinimumSearch*>(data);
    try {
      return search.evaluate({x, n});
    } catch (...) {
      search.m_fault = std::current_exception();
      search.m_library.forceStop(search.m_optimizer);
      return 0;
    }
  }

  double evaluate(std::span<const double> x) {
    if (m_fault || m_withoutMinimum) return m_value;
    const double value = m_f(x);
    // Infinity itself would turn the library's models into not-a-number.
    if (!std::isfinite(value))
      return std::min(m_worst + std::fabs(m_worst) + 1, std::numeric_limits<double>::max());
    m_worst = std::max(m_worst, value);
    if (value < m_value) {
      m_value = value;
      m_place.assign(x.begin(), x.end());
    }
    if (value < -m_limits.withoutMinimum) {
      m_withoutMinimum = true;
      m_library.forceStop(m_optimizer);
    }
    return value;
  }

  const NloptLibrary& m_library;
  FieldFunction m_f;
  const SearchLimits& m_limits;
  std::vector<double> m_place;  // the best so far
  std::vector<double> m_lower, m_upper;
  int m_free = 0;  // variables whose bounds leave them room
  double m_value = 0, m_worst = 0;
  nlopt_opt m_optimizer = nullptr;
  std::exception_ptr m_fault;
  bool m_withoutMinimum = false;
};

}  // namespace

SearchResult searchMinimum(FieldFunction f, std::span<const double> start,
                           const SearchLimits& limits) {
  const NloptLibrary* library = NloptLibrary::get();
  if (!library) return {0, {start.begin(), start.end()}, SearchOutcome::libraryMissing};
  return MinimumSearch(*library, f, start, limits).run();
}

}  // namespace vexa
