// Data files and files of global variables to the byte: as written, cut off at every place, with
// every bit changed, and made up by somebody who means harm.

#include "interp/data_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "interp/preset_globals.h"
#include "support/scripted_shell.h"

namespace vexa {
namespace {

using ::testing::AnyOf;
using ::testing::HasSubstr;

std::string integer(std::int32_t x) {
  std::string bytes;
  for (int shift = 0; shift < 32; shift += 8)
    bytes += static_cast<char>(static_cast<std::uint32_t>(x) >> shift);
  return bytes;
}

std::string number(double x) {
  const auto bits = std::bit_cast<std::uint64_t>(x);
  std::string bytes;
  for (int shift = 0; shift < 64; shift += 8) bytes += static_cast<char>(bits >> shift);
  return bytes;
}

std::string numbers(const std::vector<double>& values) {
  std::string bytes;
  for (const double x : values) bytes += number(x);
  return bytes;
}

std::string head(std::int32_t rows, std::int32_t cols) { return integer(rows) + integer(cols); }

std::string nameBlock(std::string name, char state, char flags) {
  name.resize(26);
  return name + state + flags;
}

const std::string magic("DataFile\0", 9);

class DataFiles : public ::testing::Test {
 protected:
  // In memory where the system offers that: a disk takes milliseconds for each of thousands of
  // files.
  DataFiles() {
    const std::filesystem::path memory = "/dev/shm";
    const auto place =
        std::filesystem::exists(memory) ? memory : std::filesystem::temp_directory_path();
    std::string folder = (place / "vexa_test_XXXXXX").string();
    if (!::mkdtemp(folder.data())) throw std::runtime_error("no folder in " + place.string());
    m_folder = folder;
    m_file = (m_folder / "file").string();
  }
  ~DataFiles() override { std::filesystem::remove_all(m_folder); }

  std::string fileBytes() const {
    std::ifstream stream(m_file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  void setFileBytes(const std::string& bytes) const {
    std::ofstream(m_file, std::ios::binary | std::ios::trunc) << bytes;
  }
  // Runs a program whose first dialogs answer with the file.
  void run(std::string text) {
    m_session.shell.openFiles.assign(1, m_file);
    m_session.shell.saveFiles.assign(1, m_file);
    m_session.shell.clearRecords();
    m_session.run(std::move(text));
  }
  std::string valueOf(std::string_view expression) { return m_session.evaluate(expression); }
  // The only message of the last run, or nothing.
  std::string message() const {
    const auto messages = m_session.messages();
    EXPECT_LE(messages.size(), 1u);
    return messages.empty() ? std::string() : messages[0];
  }

  std::filesystem::path m_folder;
  std::string m_file;
  ScriptedSession m_session;
};

constexpr const char* corrupted = "File format corrupted";

// ---- Data files ----

const std::string sample = head(1, 0) + number(2.5) + head(0, 6) + std::string("hello\0", 6) +
                           head(2, 3) + '\0' + numbers({1, -2, 3, 4, 5, 6});

constexpr const char* readSample =
    "float a = 1; mat m[1];\n"
    "main() { m[1] = 7; f = openfiletoread(); readfile(f, a, m); }";

TEST_F(DataFiles, WritesTheseBytes) {
  run("main() { f = openfiletowrite(); !m = {1,-2,3;4,5,6}; x = 2.5; writefile(f, x, \"hello\", "
      "m); }");
  EXPECT_EQ(message(), "");
  EXPECT_EQ(fileBytes(), sample);
  run("string s = \"text 8 \"; main() { f = openfiletowrite(); @z = {1,2};\n"
      "writefile(f, s, @z, !z &* 2, 1 + 1, \"\", 'A'); }");
  EXPECT_EQ(message(), "");
  EXPECT_EQ(fileBytes(), head(1, 1) + "Stext 8 S" + head(1, 2) + '\0' + numbers({1, 2}) +
                             head(1, 2) + '\0' + numbers({2, 4}) + head(1, 0) + number(2) +
                             head(0, 1) + '\0' + head(1, 0) + number(65));
}

TEST_F(DataFiles, CutOffAnywhereIsRefused) {
  for (std::size_t length = 0; length < sample.size(); ++length) {
    setFileBytes(sample.substr(0, length));
    run(readSample);
    EXPECT_THAT(message(), HasSubstr(corrupted)) << length;
    EXPECT_EQ(valueOf("a"), length < 16 ? "           1\n" : "         2.5\n") << length;
    EXPECT_EQ(valueOf("ncol(m)*m[1]"), "           7\n") << length;
  }
}

// Whatever a changed bit makes of the file, it is read whole or refused with the matrix untouched.
TEST_F(DataFiles, ChangedBitsAreReadOrRefused) {
  for (std::size_t bit = 0; bit < 8 * sample.size(); ++bit) {
    std::string bytes = sample;
    bytes[bit / 8] = static_cast<char>(bytes[bit / 8] ^ (1 << bit % 8));
    setFileBytes(bytes);
    run(readSample);
    if (message().empty()) continue;
    EXPECT_THAT(message(), AnyOf(HasSubstr(corrupted), HasSubstr("#36: "), HasSubstr("#28: ")))
        << bit;
    EXPECT_EQ(valueOf("ncol(m)*m[1]"), "           7\n") << bit;
  }
}

TEST_F(DataFiles, SenselessOrdersAskForNoMemory) {
  constexpr std::int32_t huge = 0x7FFFFFFF;
  const std::string payload(64, '\0');
  const struct {
    std::string bytes;
    const char* message;
  } cases[] = {
      {head(huge, huge), corrupted},
      {head(huge, 1), corrupted},
      {head(0x10000, 0x10000), corrupted},
      {head(0x20000000, 0x20000000), corrupted},
      {head(-1, 1), corrupted},
      {head(1, -1), corrupted},
      {head(-1, -1), corrupted},
      {head(-1, 0), corrupted},
      {head(2, 0), corrupted},
      {head(3, 3), corrupted},
      {head(0, 0), corrupted},
      {head(0, -5), corrupted},
      {head(0, 3) + "abc", corrupted},
      {head(0, 3) + std::string("a\0\0", 3), corrupted},
      {head(0, 256), "#36: "},
      {head(0, huge), "#36: "},
  };
  const std::uint64_t before = matrixMemoryInUse();
  for (const auto& c : cases) {
    setFileBytes(c.bytes + payload);
    run("main() { f = openfiletoread(); readfile(f, x); }");
    EXPECT_THAT(message(), HasSubstr(c.message)) << ::testing::PrintToString(c.bytes);
    EXPECT_EQ(valueOf("isvar(x)"), "           0\n");
    EXPECT_LE(matrixMemoryInUse(), before) << ::testing::PrintToString(c.bytes);
  }
}

// The flag 'S' makes a string only of elements that are a text's.
TEST_F(DataFiles, StringFlagNeedsTheMarkInEachElement) {
  setFileBytes(head(1, 1) + "Sabcdefg" + "S" + head(1, 1) + "S" + number(1) + head(2, 1) +
               "Sabcdefg" + "Sabcdefg" + "S");
  run("main() { f = openfiletoread(); readfile(f, a, b, c); }");
  EXPECT_EQ(message(), "");
  EXPECT_EQ(valueOf("isvar(a)"), "           4\n");
  EXPECT_EQ(valueOf("a"), "abcdefg\n");
  EXPECT_EQ(valueOf("isvar(b)"), "           3\n");
  EXPECT_EQ(valueOf("isvar(c)"), "           3\n");
}

TEST_F(DataFiles, OnlyRegularFilesAreRead) {
  for (const char* name : {"/", "/dev/zero", "/dev/null", "/no/such/file", ""}) {
    m_session.shell.openFiles.assign(1, name);
    EXPECT_EQ(m_session.evaluate("openfiletoread()"), "          -1\n") << name;
    EXPECT_EQ(closeAllDataFiles(), 0) << name;
  }
}

TEST_F(DataFiles, FifteenAreOpenAtMost) {
  m_session.shell.openFiles.clear();
  m_session.shell.saveFiles.assign(16, m_file);
  m_session.run("main() { for (i = 0; i < 16; i = i + 1) { x = openfiletowrite(); } }");
  EXPECT_THAT(message(), HasSubstr("#10: Currently opened files exceed limit of 15"));
  EXPECT_EQ(m_session.shell.saveFiles.size(), 1u) << "the dialog is not shown in vain";
}

TEST_F(DataFiles, RunsCloseAllFilesAtBothEnds) {
  run("main() { }");
  m_session.shell.saveFiles.assign(1, m_file);
  EXPECT_EQ(m_session.evaluate("openfiletowrite()"), "           0\n");
  run("main() { print(openfiletoread()); x = 1/0; }");
  EXPECT_THAT(m_session.outputText(), HasSubstr("           0")) << "the first slot was free again";
  EXPECT_EQ(closeAllDataFiles(), 0);
}

// ---- Files of global variables ----

struct GlobalRecord {
  std::string name;
  std::string bytes;
};

GlobalRecord floatRecord(const std::string& name, double x, char state = 0, char flags = 0) {
  return {name, nameBlock(name, state, flags) + head(1, 0) + number(x)};
}

GlobalRecord matrixRecord(const std::string& name, std::int32_t rows, std::int32_t cols,
                          const std::string& elements, char flags = 0) {
  return {name, nameBlock(name, '*', flags) + head(rows, cols) + elements};
}

// What a program with these four globals saves.
constexpr const char* fourGlobals =
    "float g = 2.5; int n = 7; mat m[2,3]; string s = \"text\";\n"
    "main() { m[2,3] = -1; print(saveglobalvars()); }";

std::vector<GlobalRecord> savedRecords() {
  std::vector<GlobalRecord> records;
  for (const PresetGlobal& preset : presetGlobals)
    records.push_back(floatRecord(std::string(preset.name), preset.value, 'I'));
  records.push_back(floatRecord("g", 2.5));
  records.push_back(floatRecord("n", 7, 0, 'W'));
  records.push_back(matrixRecord("m", 2, 3, numbers({0, 0, 0, 0, 0, -1})));
  records.push_back(matrixRecord("s", 1, 1, "text   S", 'S'));
  return records;
}

std::string globalsFile(const std::vector<GlobalRecord>& records) {
  std::string bytes = magic + integer(static_cast<std::int32_t>(records.size()) + 1) + integer(0);
  for (const GlobalRecord& record : records) bytes += record.bytes;
  return bytes;
}

TEST_F(DataFiles, GlobalsAreSavedAsTheseBytes) {
  run(fourGlobals);
  EXPECT_EQ(message(), "");
  EXPECT_EQ(fileBytes(), globalsFile(savedRecords()));
  EXPECT_THAT(m_session.outputText(), HasSubstr("          38")) << "one more than there are";
  run("float g = 1; main() { mean# = 5; readglobalvars(); n = n + 0.9; }");
  EXPECT_EQ(message(), "");
  EXPECT_EQ(valueOf("g + m[2,3] + n"), "         8.5\n");
  EXPECT_EQ(valueOf("s"), "text\n");
  EXPECT_EQ(valueOf("mean#"), "           0\n");
}

TEST_F(DataFiles, GlobalsAreSavedAndReadByCommand) {
  CoreCommands commands;
  m_session.evaluate("g = 2.5");
  m_session.shell.saveFiles.assign(1, m_file);
  EXPECT_TRUE(commands.saveGlobals());
  EXPECT_FALSE(commands.saveGlobals()) << "the dialog was cancelled";
  m_session.evaluate("g = 3");
  m_session.shell.openFiles.assign(2, m_file);
  EXPECT_TRUE(commands.readGlobals());
  EXPECT_EQ(valueOf("g"), "         2.5\n");
  setFileBytes(fileBytes().substr(0, 100));
  EXPECT_FALSE(commands.readGlobals());
  EXPECT_THAT(message(), HasSubstr("File format corrupted"));
}

TEST_F(DataFiles, GlobalsCutOffInsideARecordChangeNothing) {
  const std::vector<GlobalRecord> records = savedRecords();
  const std::string whole = globalsFile(records);
  std::set<std::size_t> ends{17};
  for (const GlobalRecord& record : records) ends.insert(*ends.rbegin() + record.bytes.size());
  ASSERT_EQ(*ends.rbegin(), whole.size());
  for (std::size_t length = 0; length <= whole.size(); ++length) {
    setFileBytes(whole.substr(0, length));
    run("float g = 1; main() { pi# = 3; readglobalvars(); }");
    if (length < magic.size()) {
      EXPECT_EQ(message(), "Not a Data File") << length;
    } else if (ends.contains(length)) {
      EXPECT_EQ(message(), "") << length;
    } else {
      EXPECT_THAT(message(), HasSubstr(corrupted)) << length;
    }
    if (ends.contains(length)) continue;
    EXPECT_EQ(valueOf("pi#"), "           3\n") << length;
    EXPECT_EQ(valueOf("g"), "           1\n") << length;
  }
}

TEST_F(DataFiles, ChangedGlobalsAreMergedOrRefusedWhole) {
  const std::string whole = globalsFile(savedRecords());
  for (std::size_t place = 0; place < whole.size(); ++place) {
    for (const int change : {1, 0x80, 0xFF}) {
      std::string bytes = whole;
      bytes[place] = static_cast<char>(bytes[place] ^ change);
      setFileBytes(bytes);
      run("float g = 1; main() { pi# = 3; readglobalvars(); }");
      if (message().find(corrupted) == std::string::npos) continue;
      EXPECT_EQ(valueOf("pi#"), "           3\n") << place;
      EXPECT_EQ(valueOf("isvar(m)"), "           0\n") << place;
    }
  }
}

TEST_F(DataFiles, GlobalsOfOtherMeaningAreRefused) {
  const struct {
    GlobalRecord record;
    const char* message;
  } cases[] = {
      {floatRecord("m", 1), "#29: "},
      {matrixRecord("g", 1, 1, number(1)), "#28: "},
      {floatRecord("main", 1), "#35: "},
      {matrixRecord("sin", 1, 1, number(1)), "#31: "},
      {floatRecord("while", 1), "#32: "},
      {matrixRecord("here", 1, 1, number(1)), " Abort! Name conflicts with local matrix: here"},
      {matrixRecord("h", -1, 1, number(1)), corrupted},
      {matrixRecord("h", 0x7FFFFFFF, 0x7FFFFFFF, number(1)), corrupted},
      {matrixRecord("h", 3, 0, number(1)), corrupted},
      {floatRecord("two words", 1), corrupted},
      {floatRecord("1st", 1), corrupted},
      {floatRecord("twenty_six_characters_long", 1), corrupted},
  };
  for (const auto& c : cases) {
    setFileBytes(globalsFile({floatRecord("first", 4), c.record, floatRecord("last", 5)}));
    run("float g = 1; mat m[1]; main() { mat here[1]; readglobalvars(); }");
    EXPECT_THAT(message(), HasSubstr(c.message)) << c.record.name;
    EXPECT_EQ(valueOf("isvar(last)"), "           0\n") << c.record.name;
    const bool damaged = c.message == corrupted;
    EXPECT_EQ(valueOf("isvar(first)"), damaged ? "           0\n" : "           1\n")
        << c.record.name;
  }
}

// Records without a name or without a value are passed over; the count bounds what is read.
TEST_F(DataFiles, EmptyRecordsArePassedOver) {
  setFileBytes(magic + integer(4) + integer(77) + matrixRecord("", 1, 2, numbers({1, 2})).bytes +
               matrixRecord("none", 0, 0, "").bytes + floatRecord("", 3).bytes +
               floatRecord("a", 4).bytes + floatRecord("b", 5).bytes);
  run("main() { readglobalvars(); }");
  EXPECT_EQ(message(), "");
  EXPECT_EQ(valueOf("isvar(none) + isvar(b)"), "           0\n");
  EXPECT_EQ(valueOf("a"), "           4\n");
  EXPECT_EQ(interpreter().displaySetting, 77);
}

}  // namespace
}  // namespace vexa
