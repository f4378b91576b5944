#pragma once

// A text document held in memory as one piece, with the beginnings of its lines beside it.

#include <string>
#include <string_view>
#include <vector>

#include "interp/shell.h"

namespace vexa {

// CR LF, LF and CR each end a line, mixed at will; the last line needs no ending, and an empty text
// is one empty line. A UTF-8 byte-order mark at the very start is dropped. The lines of a text that
// has more than a program may have are counted only as far as is needed to tell.
class MemoryDocument : public TextDocument {
 public:
  explicit MemoryDocument(std::string text = {});

  const std::string& text() const { return m_text; }
  void setText(std::string text);
  void setLoaded(bool loaded) { m_loaded = loaded; }
  int markedLine() const { return m_markedLine; }  // the line of the last fault, or -1

  int role() const override { return m_role; }
  void setRole(int role) override { m_role = role; }
  bool loaded() const override { return m_loaded; }
  int lineCount() const override;
  std::string line(int number) const override;
  void write(std::string_view text, char mode) override;
  void beginRun() override { m_markedLine = -1; }
  void markErrorLine(int number, std::string_view message) override;

 private:
  void findLines() const;

  std::string m_text;
  mutable std::vector<std::size_t> m_lineStarts;  // empty until somebody asks for a line
  int m_role = roleNone;
  int m_markedLine = -1;
  bool m_loaded = true;
};

}  // namespace vexa
