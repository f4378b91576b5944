// What a token, a statement, a call and a printed number cost, and that none of them allocates.

#include <benchmark/benchmark.h>

#include <array>
#include <cstdio>
#include <string>

#include "allocation_counter.h"
#include "interp/interpreter_state.h"
#include "interp/memory_document.h"
#include "interp/program_text.h"
#include "interp/run.h"
#include "interp/silent_shell.h"
#include "values/number_format.h"
#include "values/scanner.h"

namespace vexa {
namespace {

// Lines as programs have them: names, numbers, operators, brackets, a comment, the line suffixes.
constexpr const char* sampleLines =
    "main()\n{\n    float i, s, width;\n"
    "    for (i = 1; i <= 1000000; i = i + 1) {\n"
    "        s = s + i*0.5;                 // the sum so far\n"
    "        if (s >= 12.25) { width = (s - i)/2; }\n"
    "    }\n    print(\"%.10g\", s, ^);\n}\n";

void scanTokens(benchmark::State& bench) {
  SilentShell shell;
  InterpreterScope scope(shell);
  MemoryDocument document(sampleLines);
  const auto text = prepareProgramText(document);
  Scanner& scanner = interpreter().scanner;
  std::size_t tokens = 0;
  const std::size_t allocations = allocationCount();
  for (auto _ : bench) {
    scanner.progCursor = text->data();
    for (getToken(); !scanner.atEnd(); getToken()) ++tokens;
  }
  bench.counters["time_per_token"] = benchmark::Counter(
      static_cast<double>(tokens), benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  bench.counters["allocations_per_token"] =
      static_cast<double>(allocationCount() - allocations) / static_cast<double>(tokens);
}
BENCHMARK(scanTokens);

std::size_t allocationsOfRun(const std::string& program) {
  SilentShell shell;
  shell.dropOutput();
  InterpreterScope scope(shell);
  MemoryDocument document(program);
  const std::size_t before = allocationCount();
  executeProgram(document);
  return allocationCount() - before;
}

// Runs a loop around a statement. What a run allocates whatever its length is taken off by the
// difference to a loop of half the turns.
void runLoop(benchmark::State& bench, const char* functions, const char* declarations,
             const char* statement) {
  constexpr int turns = 20000;
  const auto program = [&](int count) {
    return std::string(functions) + "main()\n{\n    float i, s;" + declarations +
           "\n    for (i = 1; i <= " + std::to_string(count) + "; i = i + 1) {\n        " +
           statement + "\n    }\n}\n";
  };
  const std::string whole = program(turns);
  for (auto _ : bench) allocationsOfRun(whole);
  const auto extra = static_cast<double>(allocationsOfRun(whole)) -
                     static_cast<double>(allocationsOfRun(program(turns / 2)));
  bench.counters["time_per_turn"] =
      benchmark::Counter(static_cast<double>(turns) * static_cast<double>(bench.iterations()),
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  bench.counters["allocations_per_turn"] = extra / (turns / 2);
}
BENCHMARK_CAPTURE(runLoop, assignment, "", "", "s = s + i*0.5;");
BENCHMARK_CAPTURE(runLoop, element, "", " mat m[100];", "m[7] = m[7] + i;");
BENCHMARK_CAPTURE(runLoop, branch, "", "", "if (s < 100) { s = s + 1; } else { s = 0; }");
BENCHMARK_CAPTURE(runLoop, call, "half(float x)\n{\n    return x/2;\n}\n", "", "s = half(s) + i;");
BENCHMARK_CAPTURE(runLoop, builtin, "", "", "s = sin(i) + sqrt(i);");
BENCHMARK_CAPTURE(runLoop, print, "", "", "print(i*0.5, ^);");

void runEmptyMain(benchmark::State& bench) {
  for (auto _ : bench) allocationsOfRun("main()\n{\n}\n");
}
BENCHMARK(runEmptyMain);

// Halves, as tables have them, and numbers with all their digits.
double sampleNumber(int i, bool full) { return full ? 1.0 / (i + 3) : 0.5 * i; }

void formatNumber(benchmark::State& bench, bool full, bool library) {
  std::array<char, 32> text;
  int i = 0;
  for (auto _ : bench) {
    const double x = sampleNumber(i = (i + 1) % 100000, full);
    if (library)
      benchmark::DoNotOptimize(std::snprintf(text.data(), text.size(), " %11g", x));
    else
      benchmark::DoNotOptimize(formatDefault(text, x));
    benchmark::DoNotOptimize(text);
  }
}
BENCHMARK_CAPTURE(formatNumber, halves, false, false);
BENCHMARK_CAPTURE(formatNumber, halves_snprintf, false, true);
BENCHMARK_CAPTURE(formatNumber, digits, true, false);
BENCHMARK_CAPTURE(formatNumber, digits_snprintf, true, true);

void parseNumbers(benchmark::State& bench) {
  constexpr std::array<std::string_view, 4> texts = {"1", "1000000", "0.125", "6.02214199e+23"};
  std::size_t i = 0;
  for (auto _ : bench) benchmark::DoNotOptimize(parseNumber(texts[i++ % texts.size()]));
}
BENCHMARK(parseNumbers);

}  // namespace
}  // namespace vexa
