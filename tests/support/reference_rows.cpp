#include "support/reference_rows.h"

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <limits>
#include <sstream>
#include <stdexcept>

namespace vexa {

namespace {

// Takes the function's text off the line.
std::string takeText(std::string& line) {
  std::string text;
  std::istringstream fields(line);
  if (line.starts_with('"')) {
    fields >> std::quoted(text);
    fields.ignore();
  } else {
    std::getline(fields, text, ',');
    char* end = nullptr;
    std::strtod(text.c_str(), &end);
    if (*end == '\0') return {};
  }
  line.erase(0, static_cast<std::size_t>(fields.tellg()));
  return text;
}

}  // namespace

std::vector<double> numbersOf(const std::string& text) {
  std::istringstream stream(text);
  std::vector<double> numbers;
  for (std::string word; stream >> word;) numbers.push_back(std::strtod(word.c_str(), nullptr));
  return numbers;
}

std::vector<ReferenceRow> referenceRows(const std::string& file) {
  std::ifstream stream(std::string(VEXA_TEST_DATA) + "/" + file);
  std::string line;
  std::getline(stream, line);  // the heading
  std::vector<ReferenceRow> rows;
  while (std::getline(stream, line)) {
    ReferenceRow row{takeText(line), {}, {}, 0};
    std::istringstream fields(line);
    std::string value;
    for (std::string field; std::getline(fields, field, ',');) {
      row.arguments.push_back(std::strtod(field.c_str(), nullptr));
      row.lists.push_back(numbersOf(field));
      value = field;
    }
    row.arguments.pop_back();
    row.lists.pop_back();
    row.value = std::strtold(value.c_str(), nullptr);
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
