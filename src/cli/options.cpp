#include "cli/options.h"

#include <array>
#include <cctype>
#include <charconv>
#include <optional>

namespace vexa {

namespace {

constexpr std::string_view versionText = "vexa " VEXA_VERSION "\n";

constexpr std::string_view generalHelp =
    R"(Vexa executes programs of engineering and scientific computation.

Usage: vexa COMMAND [options]

  vexa run PROGRAM.vxp      execute a program
  vexa eval EXPRESSION      evaluate an expression and print its value
  vexa repl [PROGRAM.vxp]   calculate line by line
  vexa draw FILE.drw -o OUT convert a drawing to .svg, .png, .pdf, .emf or .drw

  -h, --help                this text; vexa COMMAND --help says more about a command
  --version                 the version

Try: vexa eval "2^10 > 1000"
)";

constexpr std::string_view runHelp =
    R"(Usage: vexa run PROGRAM.vxp [options]

Executes a program; - reads it from standard input. What it prints goes to stdout,
messages, questions and faults go to stderr, a line each.

  --open FILE      answers the next dialog for a file to read
  --save FILE      answers the next dialog for a file to write
  --answer TEXT    answers the next question, text entry or form field
                   Each may be repeated. Without an answer left the user is asked on a
                   terminal; otherwise a file dialog is cancelled, a text entry is empty
                   and a question takes its default button.
  --seed N         starts the random numbers at seed N, from 1 to 2147483647
  --trace          prints a line when a function is entered and when it is left
  --show-values    lists the calls with their arguments on stderr at the end
  --own-kernels    keeps matrix algebra away from the system's BLAS library
  --drawing OUT    writes the drawings of the run to OUT.drw, .svg, .png, .pdf or .emf, the
                   second to OUT-2 and so on; takes --screen, --density and --width, which
                   vexa draw --help explains
  -h, --help       this text

Exit status: 0 the run ended, 1 a fault ended it, 2 wrong usage or unreadable file,
130 interrupted.
)";

constexpr std::string_view evalHelp =
    R"(Usage: vexa eval [--program PROGRAM.vxp] EXPRESSION

Evaluates an expression as the calculator does and prints its value. Several may be
separated by ";". Undefined names may be assigned; "!" begins a matrix expression, "@" a
complex one.

  --program FILE   makes the functions of a program callable; - reads standard input
  -h, --help       this text

Exit status: 0 it was evaluated, 1 a fault ended it, 2 wrong usage or unreadable file,
130 interrupted.

  vexa eval "2^10 > 1000"
  vexa eval "!{1,2;3,4} * {1;1}"
)";

constexpr std::string_view replHelp =
    R"(Usage: vexa repl [PROGRAM.vxp]

Evaluates expressions line by line; an expression goes on in the next line while a bracket
is open. On a terminal lines can be edited, kept from session to session and completed
with Tab. The functions of PROGRAM.vxp are callable from the start.

  load FILE        makes the functions of a program callable
  run FILE         executes a program; its globals and functions stay
  help [NAME]      what there is; what a built-in, a statement or a group is for
  quit, exit       leaves, as Ctrl-D does; Ctrl-C stops an evaluation

  -h, --help       this text

Exit status: 0; when standard input is no terminal 1 if a line ended in a fault, 130 if
an evaluation was interrupted; 2 wrong usage or unreadable file.
)";

constexpr std::string_view drawHelp =
    R"(Usage: vexa draw FILE.drw -o OUT [options]

Converts a drawing document; - reads it from standard input. The extension of OUT picks the
format: .svg, .png, .pdf, .emf or .drw. A picture shows the whole extent of the drawing on
one page. OUT is written whole or not at all.

  -o, --output OUT the file to write
  --screen         on the drawing's own background instead of white
  --density DPI    dots per inch of .png, from 10 to 2400; otherwise 96
  --width MM       width of the page in millimetres, from 1 to 5000; the height follows.
                   Otherwise 96 units of the drawing make an inch.
  -h, --help       this text

Exit status: 0 it was written, 2 wrong usage, or a file that cannot be read or written.
)";

struct CommandEntry {
  std::string_view name;
  Command command;
  std::string_view help;
};

constexpr std::array commands = std::to_array<CommandEntry>({
    {"run", Command::run, runHelp},
    {"eval", Command::eval, evalHelp},
    {"repl", Command::repl, replHelp},
    {"draw", Command::draw, drawHelp},
});

std::string quoted(std::string_view word) { return '"' + std::string(word) + '"'; }

// Reads the words of one command.
class CommandParser {
 public:
  CommandParser(const CommandEntry& entry, std::span<const char* const> words)
      : m_entry(entry), m_words(words) {
    m_options.command = entry.command;
  }

  Options parse() {
    bool optionsEnded = false;
    while (m_next < m_words.size() && m_options.problem.empty()) {
      const std::string_view word = m_words[m_next++];
      if (!optionsEnded && word == "--")
        optionsEnded = true;
      else if (!optionsEnded && isOption(word))
        readOption(word);
      else
        readOperand(word);
      if (!m_options.information.empty()) return std::move(m_options);
    }
    if (m_options.problem.empty()) checkOperands();
    return std::move(m_options);
  }

 private:
  // An expression may begin with a minus; that of a number or name is none of an option.
  bool isOption(std::string_view word) const {
    if (word.size() < 2 || word[0] != '-') return false;
    if (m_entry.command != Command::eval) return true;
    return word == "-h" || (word.size() > 2 && word[1] == '-' &&
                            std::isalpha(static_cast<unsigned char>(word[2])) != 0);
  }

  void fail(std::string problem) {
    m_options.problem = "vexa " + std::string(m_entry.name) + ": " + std::move(problem) +
                        "; see vexa " + std::string(m_entry.name) + " --help";
  }

  // The value of `--name=value` or `--name value`.
  std::optional<std::string> readValue(std::string_view name,
                                       std::optional<std::string_view> attached) {
    if (attached) return std::string(*attached);
    if (m_next < m_words.size()) return m_words[m_next++];
    fail("option " + std::string(name) + " needs a value");
    return std::nullopt;
  }

  void readOption(std::string_view word) {
    std::optional<std::string_view> attached;
    if (const std::size_t at = word.find('='); at != std::string_view::npos) {
      attached = word.substr(at + 1);
      word = word.substr(0, at);
    }
    if (!attached && (word == "-h" || word == "--help")) {
      m_options.information = m_entry.help;
      return;
    }
    if (std::vector<std::string>* queue = queueOf(word)) {
      if (auto value = readValue(word, attached)) queue->push_back(std::move(*value));
    } else if (m_entry.command == Command::eval && word == "--program") {
      if (auto value = readValue(word, attached)) m_options.program = std::move(*value);
      if (m_options.problem.empty() && m_options.program.empty()) fail("--program needs a file");
    } else if (m_entry.command == Command::run && word == "--seed") {
      if (auto value = readValue(word, attached)) readSeed(*value);
    } else if (drawsPictures() && readPictureOption(word, attached)) {
      return;
    } else if (bool* flag = attached ? nullptr : flagOf(word)) {
      *flag = true;
    } else {
      fail("unknown option " + quoted(word));
    }
  }

  bool drawsPictures() const {
    return m_entry.command == Command::run || m_entry.command == Command::draw;
  }

  // False for an option that is none of these.
  bool readPictureOption(std::string_view word, std::optional<std::string_view> attached) {
    const bool drawing =
        m_entry.command == Command::run ? word == "--drawing" : word == "-o" || word == "--output";
    if (drawing) {
      if (auto value = readValue(word, attached)) takePicture(word, std::move(*value));
    } else if (word == "--density") {
      if (auto value = readValue(word, attached))
        m_options.picture.density = readLength(word, *value, lowestDensity, highestDensity);
    } else if (word == "--width") {
      if (auto value = readValue(word, attached))
        m_options.picture.width = readLength(word, *value, narrowestPicture, widestPicture);
    } else if (word == "--screen" && !attached) {
      m_options.picture.screen = true;
    } else {
      return false;
    }
    return true;
  }

  void takePicture(std::string_view name, std::string path) {
    if (!pictureFormatOf(path))
      fail(std::string(name) + " needs a file that ends in " + std::string(pictureExtensions) +
           ", not " + quoted(path));
    else if (!m_options.drawing.empty())
      fail("one picture only, " + quoted(path) + " is too many");
    else
      m_options.drawing = std::move(path);
  }

  double readLength(std::string_view name, const std::string& text, double lowest, double highest) {
    double value = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    if (error == std::errc() && rest == end && value >= lowest && value <= highest) return value;
    fail(std::string(name) + " needs a number from " + std::to_string(static_cast<int>(lowest)) +
         " to " + std::to_string(static_cast<int>(highest)) + ", not " + quoted(text));
    return lowest;
  }

  void readSeed(const std::string& text) {
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, m_options.seed);
    if (error != std::errc() || rest != end || m_options.seed < 1)
      fail("--seed needs a whole number from 1 to 2147483647, not " + quoted(text));
  }

  std::vector<std::string>* queueOf(std::string_view name) {
    if (m_entry.command != Command::run) return nullptr;
    if (name == "--open") return &m_options.openFiles;
    if (name == "--save") return &m_options.saveFiles;
    if (name == "--answer") return &m_options.answers;
    return nullptr;
  }

  bool* flagOf(std::string_view name) {
    if (m_entry.command != Command::run) return nullptr;
    if (name == "--trace") return &m_options.trace;
    if (name == "--show-values") return &m_options.showValues;
    if (name == "--own-kernels") return &m_options.ownKernels;
    return nullptr;
  }

  void readOperand(std::string_view word) {
    if (m_haveOperand) {
      fail(m_entry.command == Command::eval
               ? "one expression only; put it in quotes, " + quoted(word) + " stands outside"
               : "one " + operandName() + " only, " + quoted(word) + " is too many");
      return;
    }
    m_haveOperand = true;
    (m_entry.command == Command::eval ? m_options.expression : m_options.program) = word;
    if (word.empty())
      fail(m_entry.command == Command::eval ? "the expression is empty"
                                            : "the " + operandName() + "'s name is empty");
  }

  std::string operandName() const {
    if (m_entry.command == Command::eval) return "expression";
    return m_entry.command == Command::draw ? "drawing" : "program";
  }

  void checkOperands() {
    if (!m_haveOperand && m_entry.command != Command::repl)
      fail((m_entry.command == Command::eval ? "an " : "a ") + operandName() + " is missing");
    else if (m_entry.command == Command::draw && m_options.drawing.empty())
      fail("-o with the file to write is missing");
  }

  const CommandEntry& m_entry;
  std::span<const char* const> m_words;
  std::size_t m_next = 0;
  bool m_haveOperand = false;
  Options m_options;
};

}  // namespace

Options parseOptions(std::span<const char* const> words) {
  Options options;
  const std::string_view first = words.empty() ? std::string_view() : words[0];
  for (const CommandEntry& entry : commands)
    if (first == entry.name) return CommandParser(entry, words.subspan(1)).parse();
  if (first == "-h" || first == "--help") {
    options.information = generalHelp;
  } else if (first == "--version") {
    options.information = versionText;
  } else if (words.empty()) {
    options.problem = "vexa: a command is missing: run, eval, repl or draw; see vexa --help";
  } else if (first.ends_with(".vxp")) {
    options.problem =
        "vexa: unknown command " + quoted(first) + "; to execute a program: vexa run PROGRAM.vxp";
  } else if (first.ends_with(".drw")) {
    options.problem =
        "vexa: unknown command " + quoted(first) + "; to convert it: vexa draw FILE.drw -o OUT";
  } else {
    options.problem = "vexa: unknown command " + quoted(first) +
                      "; there are run, eval, repl and draw, see vexa --help";
  }
  return options;
}

}  // namespace vexa
