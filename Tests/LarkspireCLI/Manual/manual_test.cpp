// The manual pages: complete, without a warning of the formatter, and with examples that the tool
// understands.

#include "LarkspireCLI/Manual.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <string>

#include "LKCore/Base/Text.h"
#include "LarkspireCLI/CommandLine.h"
#include "LarkspireCLI/Support/ShellLine.h"
#include "Support/Process.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;

fs::path additions() {
  return fs::path(LK_SOURCE_ROOT) / "Documentation/man";
}

// The page as it is read, without its highlighting.
std::string plain(const std::string& roffed) {
  std::string text = roffed;
  const std::pair<const char*, const char*> rows[] = {
      {"\\fB", ""},       {"\\fI", ""},       {"\\fR", ""},       {"\\&", ""},    {"\\-", "-"},
      {"\\(aq", "'"},     {"\\(dq", "\""},    {"\\[u2014]", "—"}, {"\\(ti", "~"}, {"\\(ha", "^"},
      {"\\[u2013]", "–"}, {"\\[u2192]", "→"}, {"\\e", "\\"}};
  for (const auto& [from, to] : rows) text = text::replacingAll(text, from, to);
  return text;
}

void visitCommands(const CommandPath& path,
                   const std::function<void(const CommandPath&)>& visitor) {
  visitor(path);
  for (const CommandConfiguration& command : path.back()->subcommands) {
    CommandPath deeper = path;
    deeper.push_back(&command);
    visitCommands(deeper, visitor);
  }
}

class Manual : public testing::Test {
 protected:
  std::string page(const std::string& name) const {
    const auto found = std::ranges::find(pages, name, &ManualPage::name);
    return found == pages.end() ? "" : plain(found->text);
  }

  const std::vector<ManualPage> pages = manualPages(additions());
};

TEST_F(Manual, tellsEveryCommandAndOption) {
  visitCommands({&LK::configuration()}, [&](const CommandPath& path) {
    const std::string name =
        path.size() == 1 ? "lk.1" : "lk-" + std::string(path[1]->commandName) + ".1";
    const std::string text = page(name);
    EXPECT_NE(text.find(text::replacingAll(path.back()->abstract, "`", "")), std::string::npos)
        << commandLine(path);
    // The part of the page that is about this command alone.
    const std::string heading = "\n.SS " + commandLine(path) + "\n";
    const size_t start = path.size() > 2 ? text.find(heading) : 0;
    ASSERT_NE(start, std::string::npos) << commandLine(path);
    const size_t end = path.size() > 2 ? text.find("\n.S", start + heading.size()) : text.size();
    const std::unique_ptr<Command> made = makeCommand(*path.back());
    for (const Argument& argument : argumentsOf(*made).entries()) {
      if (argument.global && path.size() > 2) continue;
      const bool positional = argument.kind == Argument::Kind::positional;
      std::string entry = "\n.TP\n";
      if (!argument.shortName.empty()) entry += std::string(argument.shortName) + ", ";
      entry += positional ? argument.valueName : argument.name;
      EXPECT_LT(text.find(entry, start), end) << name << ": " << entry;
    }
  });
}

TEST_F(Manual, hasExamplesOnEveryPageOfACommandThatTheToolUnderstands) {
  for (const ManualPage& each : pages) {
    if (!each.name.ends_with(".1")) continue;
    const std::string text = plain(each.text);
    size_t examples = 0;
    bool isExample = false;
    for (const std::string_view line : text::split(text, '\n')) {
      if (line == ".EX" || line == ".EE") isExample = line == ".EX";
      if (!isExample || line == ".EX") continue;
      for (const ShellWords& command : shellCommands(line)) {
        if (command.front().text != "lk") continue;
        ++examples;
        std::vector<std::string> words;
        for (const ShellWord& word : command) words.push_back(word.text);
        words.erase(words.begin());
        if (words.back().empty()) words.pop_back();
        EXPECT_NO_THROW(LK::parseAsRoot(words)) << each.name << ": " << line;
      }
    }
    EXPECT_GT(examples, 0U) << each.name;
  }
}

TEST_F(Manual, refusesAnAdditionWithoutAPageOrAPlace) {
  const test::TempFolder folder;
  for (const auto& entry : fs::directory_iterator(additions())) {
    fs::copy_file(entry.path(), folder.path() / entry.path().filename());
  }
  EXPECT_EQ(manualPages(folder.path()).size(), pages.size());
  const auto refused = [&] {
    try {
      manualPages(folder.path());
      return std::string();
    } catch (const ManualError& error) {
      return text::replacingAll(error.description(), folder.path().string(), "<FOLDER>");
    }
  };
  test::writeWhole(folder / "lk-nothing.man", ".SH EXAMPLES\n");
  EXPECT_EQ(refused(), "<FOLDER>/lk-nothing.man belongs to no page");
  fs::remove(folder / "lk-nothing.man");
  test::writeWhole(folder / "lk-tags.man", "Lost words.\n");
  EXPECT_EQ(refused(), "<FOLDER>/lk-tags.man: text above the first section: Lost words.");
  fs::remove(folder / "lk-tags.man");
  EXPECT_EQ(refused(), "no lk-tags.man in <FOLDER>");
}

TEST(ManualProgram, writesPagesThatTheFormattersTakeWithoutAWarning) {
  const test::Sandbox sandbox;
  const test::ProcessResult made = sandbox.lk({"__manual", additions().string(), "man"});
  EXPECT_EQ(made.err, "");
  ASSERT_EQ(made.status, 0);
  const bool hasGroff = sandbox.run("groff", {"--version"}).status == 0;
  const bool hasMan = sandbox.run("man", {"--version"}).status == 0;
  size_t count = 0;
  for (const auto& entry : fs::directory_iterator(sandbox.home() / "man")) {
    ++count;
    const std::string file = entry.path().string();
    if (hasGroff) {
      EXPECT_EQ(sandbox.run("groff", {"-man", "-ww", "-Tutf8", "-z", file}).err, "") << file;
    }
    if (hasMan) EXPECT_EQ(sandbox.run("man", {"--warnings", "-l", file}).err, "") << file;
  }
  EXPECT_EQ(count, LK::configuration().subcommands.size() + 2);
}

}  // namespace
}  // namespace lk
