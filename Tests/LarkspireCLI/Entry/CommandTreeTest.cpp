#include "LarkspireCLI/CommandTree.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "LKCore/Base/Text.h"
#include "LarkspireCLI/Help.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

void visit(const CommandPath& path, const std::function<void(const CommandPath&)>& visitor) {
  visitor(path);
  for (const CommandConfiguration& command : path.back()->subcommands) {
    CommandPath deeper = path;
    deeper.push_back(&command);
    visit(deeper, visitor);
  }
}

// An entry as one line: <required>, [optional], =string, =*repeatable, =#integer, =default.
std::string shown(const Argument& argument) {
  std::string text = "    ";
  if (argument.kind == Argument::Kind::positional) {
    text += argument.required ? "<" : "[";
    text.append(argument.name).append(argument.required ? ">" : "]");
  } else {
    text += argument.name;
    if (argument.takesValue()) text += "=";
    if (argument.isRepeatable()) text += "*";
    if (std::holds_alternative<int*>(argument.field) ||
        std::holds_alternative<std::optional<int>*>(argument.field)) {
      text += "#";
    }
    if (argument.takesValue()) text += argument.heldText();
    if (argument.kind == Argument::Kind::option && argument.required) text += "!";
  }
  return text.append(" | ").append(argument.help) + "\n";
}

std::string shown(const CommandPath& path) {
  const CommandConfiguration& command = *path.back();
  std::string text = commandLine(path);
  if (!command.defaultSubcommand.empty()) {
    text.append(" (").append(command.defaultSubcommand).append(")");
  }
  text.append(" | ").append(command.abstract).append("\n");
  for (const std::string_view line : text::split(command.discussion, '\n')) {
    if (!line.empty()) text.append("  ").append(line).append("\n");
  }
  const std::unique_ptr<Command> made = makeCommand(command);
  for (const Argument& argument : argumentsOf(*made).entries()) {
    if (!argument.global) text += shown(argument);
  }
  return text;
}

TEST(CommandTree, isTheToldOneWordForWord) {
  std::string tree;
  visit({&LK::configuration()}, [&](const CommandPath& path) { tree += shown(path); });
  EXPECT_EQ(tree, test::readWhole(std::filesystem::path(LK_SOURCE_ROOT) /
                                  "Tests/LarkspireCLI/Entry/command-tree.txt"));
}

TEST(CommandTree, givesEveryLeafTheGlobalOptions) {
  visit({&LK::configuration()}, [](const CommandPath& path) {
    const std::unique_ptr<Command> made = makeCommand(*path.back());
    std::string globals;
    for (const Argument& argument : argumentsOf(*made).entries()) {
      if (argument.global) globals.append(argument.name).append("|").append(argument.help) += '\n';
    }
    EXPECT_EQ(globals,
              "--collection|Override collection location (default: auto-detect iCloud/local).\n"
              "--json|Output as JSON instead of human-readable text.\n"
              "--quiet|Suppress non-essential output.\n"
              "--help|Show this help.\n")
        << commandLine(path);
  });
}

TEST(Help, staysWithinTheTerminalsWidth) {
  for (const size_t width : {size_t{60}, size_t{80}, size_t{100}}) {
    visit({&LK::configuration()}, [&](const CommandPath& path) {
      const std::string help = helpText(path, Terminal{.width = width});
      for (const std::string_view line : text::split(help, '\n')) {
        EXPECT_LE(displayWidth(line), width) << line;
        EXPECT_FALSE(line.ends_with(' ')) << line;
      }
    });
  }
}

TEST(Help, teachesACommand) {
  const CommandConfiguration& root = LK::configuration();
  const CommandConfiguration* group = root.subcommand("collection");
  ASSERT_NE(group, nullptr);
  EXPECT_EQ(helpText({&root, group, group->subcommand("remove")}, Terminal{}),
            R"(Remove a collection from the registry.

Usage: lk collection remove <reference> [options]

Removes the collection from the registry only — does NOT delete files on disk.
You must type the collection name to confirm removal.
The default collection cannot be removed.
If the active collection is removed, the default collection becomes active.

Arguments:
  <reference>  Collection name, UUID, or path to remove.

Options:
  --confirm <name>  Type the collection name to confirm removal.

Global options:
  --collection <path>  Override collection location (default: auto-detect
                       iCloud/local).
  --json               Output as JSON instead of human-readable text.
  --quiet              Suppress non-essential output.
  -h, --help           Show this help.
)");
}

TEST(Help, tellsADefaultThatTheTextLeavesOut) {
  const CommandConfiguration& root = LK::configuration();
  const auto has = [&](const char* command, std::string_view part) {
    return helpText({&root, root.subcommand(command)}, Terminal{.width = 200}).find(part) !=
           std::string::npos;
  };
  EXPECT_TRUE(has("list", "Sort by: modified, created, title, size. (default: modified)"));
  EXPECT_TRUE(has("search", "(default: 0)"));
  EXPECT_FALSE(has("bind", "(default: letter)"));
  EXPECT_FALSE(has("bind", "(default: per-page)"));
}

TEST(Terminal, wrapsByWhatIsSeen) {
  using Lines = std::vector<std::string>;
  EXPECT_EQ(wrapped("", 10), Lines({""}));
  EXPECT_EQ(wrapped("one two three", 7), Lines({"one two", "three"}));
  EXPECT_EQ(wrapped("a\n\nb c", 3), Lines({"a", "", "b c"}));
  EXPECT_EQ(wrapped("unbreakable x", 4), Lines({"unbreakable", "x"}));
  EXPECT_EQ(wrapped("日本 ée\u0301", 7), Lines({"日本 ée\u0301"}));
  EXPECT_EQ(wrapped("日本 語", 6), Lines({"日本", "語"}));
  EXPECT_EQ(displayWidth("→ 🙂\u200d e\u0301"), 6U);
}

}  // namespace
}  // namespace lk
