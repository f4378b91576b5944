#pragma once

// What the system can say about its own words: one line for every built-in and every statement.
//
// The repl's `help NAME`, the desktop's information trees and its argument hints are made from
// these two tables. They hold text only; what a built-in does is decided by its handler, and the
// built-in table (builtins.h) stays the one place that knows which handler that is. Rows of
// `builtinHelp()` stand in the order of that table, so the code of a built-in is its row here too.

#include <span>
#include <string_view>

namespace vexa {

struct BuiltinHelp {
  std::string_view name;
  std::string_view group;      // heading under which lists show it, such as "statistics"
  std::string_view signature;  // how a call is written; what stands in [ ] may be left out
  std::string_view text;       // one sentence or two, no line breaks
};

struct StatementHelp {
  std::string_view name;  // a keyword, or a word for a form that has none ("assignment")
  std::string_view signature;
  std::string_view text;
};

// All built-ins, in the order of their codes.
std::span<const BuiltinHelp> builtinHelp();

// All keywords in the order of their codes, then the forms without a keyword.
std::span<const StatementHelp> statementHelp();

}  // namespace vexa
