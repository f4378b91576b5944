#include "numlib/random/random_builtins.h"

#include <algorithm>
#include <limits>
#include <span>

#include "numlib/random/generators.h"
#include "values/argument_readers.h"

namespace vexa {

namespace {

// What all four built-ins share, for as long as the process lives.
struct RandomSource {
  std::int32_t callSeed = 0;  // of rand and randnorm
  std::int32_t fillSeed = 0;  // of randfill and randnormfill
  UniformGenerator uniform;
  NormalGenerator normal{uniform};
};

RandomSource& source() {
  static RandomSource record;
  return record;
}

// A seed that starts a new sequence is the negative of the given number, without its fraction; a
// number beyond 32 bits starts the sequence of the largest seed.
std::int32_t newSequence(double s) {
  constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();
  return s >= largest ? -largest : -static_cast<std::int32_t>(s);
}

// Of zero, below and not-a-number the clock decides.
std::int32_t seedFrom(double s) { return newSequence(s > 0 ? s : shell().clock()); }

// The generator goes on where it stopped, so the stretches do not show in the numbers.
void fillInStretches(std::span<double> elements, bool normal) {
  constexpr std::size_t elementsBetweenPolls = std::size_t{1} << 18;
  RandomSource& random = source();
  while (!elements.empty()) {
    const auto stretch = elements.first(std::min(elements.size(), elementsBetweenPolls));
    if (normal)
      random.normal.fill(stretch, random.fillSeed);
    else
      random.uniform.fill(stretch, random.fillSeed);
    elements = elements.subspan(stretch.size());
    pollInterrupt();
  }
}

}  // namespace

double randBuiltin() {
  const bool normal = interpreter().currentBuiltin == builtinCode("randnorm");
  RandomSource& random = source();
  expectChar('(');
  if (!acceptChar(')')) {
    const double s = evalScalarArg();
    expectChar(')');
    random.callSeed = seedFrom(s);
  }
  return normal ? random.normal.draw(random.callSeed) : random.uniform.draw(random.callSeed);
}

double randfillBuiltin() {
  const bool normal = interpreter().currentBuiltin == builtinCode("randnormfill");
  RandomSource& random = source();
  expectChar('(');
  const SizedName target = readSizedName();
  double s = 0.0;
  if (moreArguments()) {
    s = evalScalarArg();
    expectChar(')');
  }

  const Matrix* existing = findMatrix(target.name);
  if (!target.sized && (!existing || existing->isString())) {
    raiseError(ErrorKey::matrixNameExpected);
    return noResult();
  }
  Matrix& matrix = target.sized ? makeSized(target) : resultMatrix(target.name);
  random.fillSeed = seedFrom(s);
  matrix.setTag(0);
  fillInStretches(matrix.elements(), normal);
  return noResult();
}

void seedRandomNumbers(std::int32_t seed) {
  RandomSource& random = source();
  random.callSeed = random.fillSeed = -seed;
  random.normal.dropSpare();
}

}  // namespace vexa
