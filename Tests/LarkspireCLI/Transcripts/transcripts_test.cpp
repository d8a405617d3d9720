// Runs the transcripts: sessions at a shell, with what the tool prints. Those in Tests/Transcripts
// are nothing but a session; a page of the guide has its session in blocks that begin "```console".
//
// A line "$ COMMAND" is run by sh in a fresh home that holds a copy of the sample collection as
// Garden; `lk` is the built tool. The lines up to the next command are what it must print, standard
// error included, and "[status N]" stands after one that does not end with 0. What differs from
// run to run reads <UUID>, <DATE> and <HOME>.
//
//     LK_RECORD=1 ctest -R Transcripts     writes down anew what the tool prints; read the diff

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <typeindex>
#include <vector>

#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/Text.h"
#include "LarkspireCLI/CommandLine.h"
#include "LarkspireCLI/Support/ShellLine.h"
#include "Support/Process.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;

bool isPage(const fs::path& file) {
  return file.extension() == ".md";
}

std::vector<fs::path> transcripts() {
  std::vector<fs::path> files;
  for (const char* folder : {"Tests/Transcripts", "Documentation/guide"}) {
    for (const auto& entry : fs::directory_iterator(fs::path(LK_SOURCE_ROOT) / folder)) {
      if (entry.path().extension() == ".txt" || isPage(entry.path())) files.push_back(entry.path());
    }
  }
  std::ranges::sort(files);
  return files;
}

std::string withoutVolatileParts(std::string output, const fs::path& home) {
  static const Pattern uuid("[0-9A-Fa-f]{8}(?:-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12}");
  static const Pattern date(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ)");
  output = text::replacingAll(output, home.string(), "<HOME>");
  // In JSON every slash of the path is escaped.
  output = text::replacingAll(output, text::replacingAll(home.string(), "/", "\\/"), "<HOME>");
  return date.replacingAll(uuid.replacingAll(output, "<UUID>"), "<DATE>");
}

// What a shell would show of the command, the command line included.
std::string played(const std::string& command, const test::Sandbox& sandbox) {
  const std::string script =
      "PATH=" + fs::path(LK_TOOL_PATH).parent_path().string() + ":$PATH\nexec 2>&1\n" + command;
  const test::ProcessResult result = sandbox.run("/bin/sh", {"-c", script});
  std::string shown = "$ " + command + "\n" + withoutVolatileParts(result.out, sandbox.home());
  if (!shown.ends_with('\n')) shown += "\n[no line feed at the end]\n";
  if (result.status != 0) shown += "[status " + std::to_string(result.status) + "]\n";
  return shown;
}

// What the lines of a transcript are: a command, what a command printed, or the words around it.
enum class LineKind { command, output, words };

std::vector<std::pair<LineKind, std::string>> linesOf(const fs::path& file) {
  std::vector<std::pair<LineKind, std::string>> lines;
  const std::string content = test::readWhole(file);
  bool isSession = false;
  for (const std::string_view line : text::split(content, '\n')) {
    if (isPage(file) && line.starts_with("```")) {
      isSession = line == "```console";
      lines.emplace_back(LineKind::words, line);
      continue;
    }
    const bool isCommand = line.starts_with("$ ") && (isSession || !isPage(file));
    if (!isPage(file)) isSession = isSession || isCommand;
    lines.emplace_back(isCommand   ? LineKind::command
                       : isSession ? LineKind::output
                                   : LineKind::words,
                       line);
  }
  return lines;
}

std::string replayed(const fs::path& file) {
  const test::Sandbox sandbox;
  fs::copy(fs::path(LK_SOURCE_ROOT) / "Samples/Garden", sandbox.home() / "Garden",
           fs::copy_options::recursive);
  std::string result;
  for (const auto& [kind, line] : linesOf(file)) {
    if (kind == LineKind::command) result += played(line.substr(2), sandbox);
    if (kind == LineKind::words) result += line + '\n';
  }
  // A page ends in words, and the last of its lines has nothing behind it.
  if (isPage(file)) result.pop_back();
  return result;
}

// The commands of the tree that some transcript runs.
std::set<std::type_index> shownCommands() {
  std::set<std::type_index> shown;
  const auto take = [&](const ShellWords& words) {
    auto word = words.begin();
    while (word != words.end() && word->text.find('=') != std::string::npos) ++word;
    if (word == words.end() || word->text != "lk") return;
    std::vector<std::string> arguments;
    for (++word; word != words.end(); ++word) arguments.push_back(word->text);
    try {
      const Request request = LK::parseAsRoot(arguments);
      const auto* run = std::get_if<CommandRun>(&request);
      if (run == nullptr) return;
      const Command& command = *run->command;
      shown.insert(typeid(command));
    } catch (const UsageError&) {
      return;  // a transcript of a refusal
    }
  };
  for (const fs::path& file : transcripts()) {
    for (const auto& [kind, line] : linesOf(file)) {
      if (kind == LineKind::command) std::ranges::for_each(shellCommands(line.substr(2)), take);
    }
  }
  return shown;
}

void visitLeaves(const CommandPath& path, const std::function<void(const CommandPath&)>& visitor) {
  if (!path.back()->isGroup()) visitor(path);
  for (const CommandConfiguration& command : path.back()->subcommands) {
    CommandPath deeper = path;
    deeper.push_back(&command);
    visitLeaves(deeper, visitor);
  }
}

TEST(TranscriptsOfTheTree, showEveryCommand) {
  const std::set<std::type_index> shown = shownCommands();
  std::set<std::string> missing;
  visitLeaves({&LK::configuration()}, [&](const CommandPath& path) {
    const std::unique_ptr<Command> made = makeCommand(*path.back());
    const Command& command = *made;
    if (!shown.contains(typeid(command))) missing.insert(commandLine(path));
  });
  EXPECT_EQ(missing, std::set<std::string>());
}

class Transcripts : public testing::TestWithParam<fs::path> {};

TEST_P(Transcripts, ReadAsWritten) {
  const std::string expected = test::readWhole(GetParam());
  const std::string actual = replayed(GetParam());
  if (std::getenv("LK_RECORD") != nullptr) {
    test::writeWhole(GetParam(), actual);
  } else {
    EXPECT_EQ(actual, expected);
  }
}

INSTANTIATE_TEST_SUITE_P(Sessions, Transcripts, testing::ValuesIn(transcripts()),
                         [](const testing::TestParamInfo<fs::path>& row) {
                           const std::string place = isPage(row.param) ? "guide_" : "";
                           return place + text::replacingAll(row.param.stem().string(), "-", "_");
                         });

}  // namespace
}  // namespace lk
