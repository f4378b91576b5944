#include "cli/line_editor.h"

#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cwchar>
#include <utility>

#include "cli/interrupt.h"
#include "cli/output_stream.h"

namespace vexa {

namespace {

// The part of the library's interface that is used here. It is opened only when lines are edited,
// so that no other command pays for it.
struct EditLine;
struct EditHistory;

struct HistoryEvent {
  int number;
  const char* text;
};

struct LineInfo {
  const char* buffer;
  const char* cursor;
  const char* end;
};

enum EditOption : int {
  editorKeys = 2,
  editorSignal = 3,
  editorBind = 4,
  editorAddFunction = 9,
  editorHistory = 10,
  editorMode = 11,
  editorGetCharacter = 13,
  editorClientData = 14,
  editorPrepareTerminal = 16,
  editorPrompt = 21,
};

enum HistoryOption : int { historySetSize = 1, historyEnter = 10 };

enum EditResult : unsigned char { resultRefresh = 4, resultError = 6, resultRedisplay = 8 };

// Around colour codes in the prompt, which take no room on the screen.
constexpr char invisibleMark = '\1';

struct EditLibrary {
  EditLine* (*init)(const char*, std::FILE*, std::FILE*, std::FILE*);
  void (*end)(EditLine*);
  const char* (*gets)(EditLine*, int*);
  int (*set)(EditLine*, int, ...);
  int (*get)(EditLine*, int, ...);
  const LineInfo* (*line)(EditLine*);
  int (*insert)(EditLine*, const char*);
  EditHistory* (*historyInit)();
  void (*historyEnd)(EditHistory*);
  int (*history)(EditHistory*, HistoryEvent*, int, ...);

  // True when the library and all of its entries are there.
  bool open() {
    void* const handle = ::dlopen("libedit.so.2", RTLD_NOW | RTLD_LOCAL);
    if (!handle) return false;
    return find(handle, "el_init", init) && find(handle, "el_end", end) &&
           find(handle, "el_gets", gets) && find(handle, "el_set", set) &&
           find(handle, "el_get", get) && find(handle, "el_line", line) &&
           find(handle, "el_insertstr", insert) && find(handle, "history_init", historyInit) &&
           find(handle, "history_end", historyEnd) && find(handle, "history", history);
  }

 private:
  template <class Function>
  static bool find(void* handle, const char* name, Function*& entry) {
    entry = reinterpret_cast<Function*>(::dlsym(handle, name));
    return entry != nullptr;
  }
};

EditLibrary library;

bool isWordPart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
         c == '#' || c == '$';
}

class EditLineReader : public LineReader {
 public:
  EditLineReader(StandardInput& input, Completions completions, bool coloured)
      : m_input(input), m_completions(std::move(completions)), m_coloured(coloured) {}

  ~EditLineReader() override {
    if (m_editor) library.end(m_editor);
    if (m_history) library.historyEnd(m_history);
    if (m_screen) std::fclose(m_screen);
  }

  bool start(const History& history) {
    // Prompts and what is typed belong to stderr; only values go to stdout.
    const int descriptor = ::dup(STDERR_FILENO);
    if (descriptor < 0) return false;
    m_screen = ::fdopen(descriptor, "w");
    if (!m_screen) {
      ::close(descriptor);
      return false;
    }
    std::setlocale(LC_CTYPE, "");
    m_editor = library.init("vexa", stdin, m_screen, m_screen);
    m_history = library.historyInit();
    if (!m_editor || !m_history) return false;
    int editing = 0;
    library.get(m_editor, editorMode, &editing);
    if (editing == 0) return false;  // a terminal on which nothing can be moved

    HistoryEvent event;
    library.history(m_history, &event, historySetSize, static_cast<int>(History::lineLimit));
    for (const std::string& line : history.lines()) remember(line);

    library.set(m_editor, editorKeys, "emacs");
    library.set(m_editor, editorClientData, this);
    library.set(m_editor, editorPrompt, &EditLineReader::promptOf, invisibleMark);
    library.set(m_editor, editorSignal, 1);
    library.set(m_editor, editorHistory, library.history, m_history);
    library.set(m_editor, editorGetCharacter, &EditLineReader::readCharacter);
    library.set(m_editor, editorAddFunction, "vexa-complete", "Completes a name",
                &EditLineReader::complete);
    library.set(m_editor, editorBind, "^I", "vexa-complete", nullptr);
    library.set(m_editor, editorBind, "^R", "em-inc-search-prev", nullptr);
    return true;
  }

  InputLine read(std::string_view prompt) override {
    m_prompt = prompt;
    if (m_coloured) {
      // The library hands a code on with the character behind it, here the blank.
      m_prompt.insert(prompt.find_last_not_of(' ') + 1, "\1\033[0m\1");
      m_prompt.insert(0, "\1\033[1;32m\1");
    }
    // Before the prompt is seen, so that a quick hand types into the line and not beside it.
    library.set(m_editor, editorPrepareTerminal, 1);
    int count = 0;
    const char* const text = library.gets(m_editor, &count);
    InputLine line;
    if (text && count > 0) {
      line.kind = InputLine::Kind::line;
      line.text.assign(text, static_cast<std::size_t>(count));
      while (line.text.ends_with('\n') || line.text.ends_with('\r')) line.text.pop_back();
    } else {
      line.kind = interruptPending() ? InputLine::Kind::interrupted : InputLine::Kind::end;
      writeAll(STDERR_FILENO, "\n");
    }
    return line;
  }

  void remember(std::string_view line) override {
    HistoryEvent event;
    library.history(m_history, &event, historyEnter, std::string(line).c_str());
  }

 private:
  static EditLineReader& readerOf(EditLine* editor) {
    void* data = nullptr;
    library.get(editor, editorClientData, &data);
    return *static_cast<EditLineReader*>(data);
  }

  static char* promptOf(EditLine* editor) { return readerOf(editor).m_prompt.data(); }

  // One character of the terminal: 1, or 0 at the end, or -1 when Ctrl-C was pressed.
  static int readCharacter(EditLine* editor, wchar_t* character) {
    StandardInput& input = readerOf(editor).m_input;
    std::mbstate_t state{};
    while (true) {
      const int byte = input.readByte();
      if (byte == -1) return 0;
      if (byte < 0) return -1;
      const char piece = static_cast<char>(byte);
      switch (std::mbrtowc(character, &piece, 1, &state)) {
        case static_cast<std::size_t>(-2):
          continue;  // more bytes belong to it
        case static_cast<std::size_t>(-1):
          *character = L'?';
          return 1;
        default:
          return 1;
      }
    }
  }

  static unsigned char complete(EditLine* editor, int) { return readerOf(editor).completeWord(); }

  unsigned char completeWord() {
    const LineInfo* const info = library.line(m_editor);
    const char* start = info->cursor;
    while (start != info->buffer && isWordPart(start[-1])) --start;
    const std::string_view word(start, static_cast<std::size_t>(info->cursor - start));
    if (word.empty()) return resultError;
    const std::vector<std::string> words = m_completions(word);
    const std::string common = commonBeginning(words);
    if (common.size() > word.size())
      return library.insert(m_editor, common.c_str() + word.size()) == 0 ? resultRefresh
                                                                         : resultError;
    if (words.size() < 2) return resultError;
    std::string list = "\n";
    std::size_t column = 0;
    for (const std::string& candidate : words) {
      constexpr std::size_t columnWidth = 18, lineWidth = 76;
      if (column + columnWidth > lineWidth) {
        list += '\n';
        column = 0;
      }
      list += candidate;
      const std::size_t width = std::max(columnWidth, candidate.size() + 1);
      list.append(width - candidate.size(), ' ');
      column += width;
    }
    list += '\n';
    std::fputs(list.c_str(), m_screen);
    return resultRedisplay;
  }

  StandardInput& m_input;
  Completions m_completions;
  bool m_coloured;
  std::string m_prompt;
  std::FILE* m_screen = nullptr;
  EditLine* m_editor = nullptr;
  EditHistory* m_history = nullptr;
};

}  // namespace

std::unique_ptr<LineReader> makeLineEditor(StandardInput& input, History& history,
                                           Completions completions, bool coloured) {
  if (!library.open()) return nullptr;
  auto editor = std::make_unique<EditLineReader>(input, std::move(completions), coloured);
  if (!editor->start(history)) return nullptr;
  return editor;
}

std::string commonBeginning(const std::vector<std::string>& words) {
  if (words.empty()) return {};
  std::string common = words.front();
  for (const std::string& word : words) {
    const auto differ = std::mismatch(common.begin(), common.end(), word.begin(), word.end());
    common.erase(differ.first, common.end());
  }
  return common;
}

}  // namespace vexa
