#include "support/reference_rows.h"

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <sstream>
#include <stdexcept>

namespace vexa {

std::vector<ReferenceRow> referenceRows(const std::string& file) {
  std::ifstream stream(std::string(VEXA_TEST_DATA) + "/" + file);
  std::string line;
  std::getline(stream, line);  // the heading
  std::vector<ReferenceRow> rows;
  while (std::getline(stream, line)) {
    std::istringstream fields(line);
    std::vector<std::string> texts;
    for (std::string text; std::getline(fields, text, ',');) texts.push_back(text);
    ReferenceRow row{{}, std::strtold(texts.back().c_str(), nullptr)};
    texts.pop_back();
    for (const std::string& text : texts)
      row.arguments.push_back(std::strtod(text.c_str(), nullptr));
    rows.push_back(row);
  }
  if (rows.empty()) throw std::runtime_error("no reference rows in " + file);
  return rows;
}

double ulpOf(long double value) {
  const double nearest = std::fabs(static_cast<double>(value));
  return std::nextafter(nearest, std::numeric_limits<double>::infinity()) - nearest;
}

}  // namespace vexa
