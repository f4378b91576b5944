#include "interp/output.h"

#include "interp/interpreter_state.h"
#include "interp/run.h"

namespace vexa {

namespace {

class DocumentSink : public TextSink {
 public:
  void write(std::string_view text, char mode) override {
    InterpreterState& state = interpreter();
    if (!state.outputDocument || state.outputDocument->role() == roleExecuted)
      chooseOutputDocument(2);
    state.outputDocument->write(text, mode);
  }
};

}  // namespace

void StringSink::write(std::string_view text, char mode) {
  const bool whole = mode != lineAppend;
  if (whole && !text.empty() && !m_text.empty() && m_text.back() != '\n') m_text += '\n';
  m_text += text;
  if (whole) m_text += '\n';
}

TextSink& outputSink() {
  static DocumentSink document;
  TextSink* sink = interpreter().sink;
  return sink ? *sink : document;
}

}  // namespace vexa
