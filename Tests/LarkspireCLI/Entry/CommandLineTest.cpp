#include "LarkspireCLI/CommandLine.h"

#include <gtest/gtest.h>

namespace lk {
namespace {

using Words = std::vector<std::string>;

const Command* commandOf(const Request& request) {
  const auto* run = std::get_if<CommandRun>(&request);
  return run == nullptr ? nullptr : run->command.get();
}

// What a command line comes to, in one line: the fields that were set, or the first line and the
// suggestion of the refusal.
std::string outcome(const Words& words) {
  try {
    const Request request = LK::parseAsRoot(words);
    if (const auto* help = std::get_if<HelpRequest>(&request)) {
      return "help of " + commandLine(help->path);
    }
    if (const auto* script = std::get_if<CompletionRequest>(&request)) {
      return "script for " + std::string(script->shell);
    }
    if (std::holds_alternative<VersionRequest>(request)) return "version";
    auto* command = const_cast<Command*>(commandOf(request));
    std::string text = "run";
    for (const Argument& argument : argumentsOf(*command).entries()) {
      const std::string name(argument.name);
      if (auto* const* flag = std::get_if<bool*>(&argument.field)) {
        if (**flag) text += " " + name;
      } else if (auto* const* value = std::get_if<std::optional<std::string>*>(&argument.field)) {
        if (**value) text += " " + name + "=" + ***value;
      } else if (argument.required) {
        text += " " + name + "=" + argument.heldText();
      }
    }
    return text;
  } catch (const UsageError& error) {
    const std::string& text = error.description();
    const size_t end = text.find("\nUsage: ");
    return end == std::string::npos ? "no usage line: " + text : text.substr(0, end);
  }
}

struct LineCase {
  const char* name;
  Words words;
  std::string outcome;
};

void PrintTo(const LineCase& row, std::ostream* out) {
  *out << row.name;
}

class CommandLines : public testing::TestWithParam<LineCase> {};

TEST_P(CommandLines, areUnderstood) {
  EXPECT_EQ(outcome(GetParam().words), GetParam().outcome);
}

std::string lineCaseName(const testing::TestParamInfo<LineCase>& row) {
  return row.param.name;
}

const LineCase routes[] = {
    {"leaf", {"show", "X"}, "run reference=X"},
    {"subcommand", {"tags", "rename", "a", "b"}, "run oldPath=a newPath=b"},
    {"globals_after",
     {"show", "X", "--json", "--collection", "/a b\n"},
     "run reference=X --collection=/a b\n --json"},
    {"globals_before",
     {"--json", "--collection", "D", "show", "X"},
     "run reference=X --collection=D --json"},
    {"global_assigned_before", {"--collection=D", "collections"}, "run --collection=D"},
    {"globals_at_each_level",
     {"--quiet", "tags", "--json", "list", "--collection", "D"},
     "run --collection=D --json --quiet"},
    {"nearest_global_wins",
     {"--collection", "A", "tags", "--collection", "B"},
     "run --collection=B"},
    {"command_name_as_value", {"--collection", "show", "collections"}, "run --collection=show"},
    {"default", {"daily"}, "run"},
    {"default_with_option", {"tasks", "--overdue"}, "run --overdue"},
    {"default_with_value", {"daily", "--date", "yesterday"}, "run --date=yesterday"},
    {"default_with_argument", {"tags", "work"}, "run name=work"},
    {"default_after_global", {"collection", "--json"}, "run --json"},
    {"default_after_separator", {"tags", "--", "rename"}, "run name=rename"},
    {"title_named_like_a_command", {"show", "list"}, "run reference=list"},
    {"title_named_help", {"show", "help"}, "run reference=help"},
};
INSTANTIATE_TEST_SUITE_P(routes, CommandLines, testing::ValuesIn(routes), lineCaseName);

const LineCase requests[] = {
    {"nothing", {}, "help of lk"},
    {"root_flag", {"--help"}, "help of lk"},
    {"root_short_flag", {"-h"}, "help of lk"},
    {"only_globals", {"--json"}, "help of lk"},
    {"help_word", {"help"}, "help of lk"},
    {"help_of_leaf", {"help", "tasks", "add"}, "help of lk tasks add"},
    {"help_of_line", {"help", "list", "--tag", "work"}, "help of lk list"},
    {"help_of_help", {"help", "--help"}, "help of lk"},
    {"group_without_default", {"projects"}, "help of lk projects"},
    {"group_flag", {"tasks", "--help"}, "help of lk tasks"},
    {"group_flag_after_global", {"--json", "daily", "--quiet", "-h"}, "help of lk daily"},
    {"default_flag", {"tasks", "--overdue", "--help"}, "help of lk tasks list"},
    {"leaf_flag", {"rename", "--help"}, "help of lk rename"},
    {"version", {"--version"}, "version"},
    {"version_after_global", {"--json", "--version"}, "version"},
    {"script", {"--generate-completion-script", "zsh"}, "script for zsh"},
};
INSTANTIATE_TEST_SUITE_P(requests, CommandLines, testing::ValuesIn(requests), lineCaseName);

const LineCase refusals[] = {
    {"command", {"shwo"}, "Error: Unknown command 'shwo'.\nDid you mean 'show'?"},
    {"command_unlike_all", {"frobnicate"}, "Error: Unknown command 'frobnicate'."},
    {"empty_command", {""}, "Error: Unknown command ''."},
    {"separator_as_command", {"--", "show"}, "Error: Unknown command '--'."},
    {"subcommand",
     {"projects", "renam", "a"},
     "Error: Unknown subcommand 'renam'.\nDid you mean 'rename'?"},
    {"subcommand_of_default",
     {"tasks", "ad", "x"},
     "Error: Unknown subcommand 'ad'.\nDid you mean 'add'?"},
    {"subcommand_taken_for_argument",
     {"tags", "renme", "a", "b"},
     "Error: Unexpected argument 'a'.\nDid you mean 'rename'?"},
    {"help_for_nothing",
     {"help", "tasks", "ad"},
     "Error: Unknown subcommand 'ad'.\nDid you mean 'add'?"},
    {"root_option", {"--jsn", "list"}, "Error: Unknown option '--jsn'.\nDid you mean '--json'?"},
    {"group_option", {"projects", "--all"}, "Error: Unknown option '--all'."},
    {"default_option",
     {"tasks", "--overdu"},
     "Error: Unknown option '--overdu'.\nDid you mean '--overdue'?"},
    {"root_value", {"--collection"}, "Error: Missing value for '--collection'."},
    {"required_option", {"properties", "add", "X"}, "Error: Missing option '--type'."},
    {"shell",
     {"--generate-completion-script", "tcsh"},
     "Error: No completion script for the shell 'tcsh'. Use bash, zsh or fish."},
    {"not_UTF8", {"show", "caf\xe9"}, "Error: The argument 'caf\xef\xbf\xbd' isn't valid UTF-8."},
    {"not_UTF8_in_option",
     {"list", "--tag=\xff"},
     "Error: The argument '--tag=\xef\xbf\xbd' isn't valid UTF-8."},
};
INSTANTIATE_TEST_SUITE_P(refusals, CommandLines, testing::ValuesIn(refusals), lineCaseName);

TEST(UsageErrors, sayWhereToReadOn) {
  try {
    LK::parseAsRoot({"rename", "--titel", "a"});
    FAIL() << "nothing thrown";
  } catch (const UsageError& error) {
    EXPECT_EQ(error.description(),
              "Error: Unknown option '--titel'.\n"
              "Usage: lk rename <reference> <new-title> [options]\n"
              "See 'lk rename --help' for more information.");
  }
}

}  // namespace
}  // namespace lk
