// The built tool, run as a process: what only shows from outside.

#include <gtest/gtest.h>

#include "Support/Process.h"

namespace lk {
namespace {

using test::ProcessResult;
using test::Sandbox;

ProcessResult shell(const Sandbox& sandbox, const std::string& script) {
  return sandbox.run("bash", {"-c", script}, {.environment = {{"LK", LK_TOOL_PATH}}});
}

TEST(Program, answersOnTheRightStreamWithTheRightStatus) {
  const Sandbox sandbox;
  const ProcessResult version = sandbox.lk({"--version"});
  EXPECT_EQ(version.out, "0.1.0\n");
  EXPECT_EQ(version.err, "");
  EXPECT_EQ(version.status, 0);

  const ProcessResult help = sandbox.lk({});
  EXPECT_EQ(help.out.substr(0, help.out.find('\n')),
            "Larkspire command-line tool — create, read, update, and query notes.");
  EXPECT_EQ(help.err, "");
  EXPECT_EQ(help.status, 0);

  const ProcessResult group = sandbox.lk({"projects"});
  EXPECT_NE(group.out.find("\nUsage: lk projects <subcommand> [options]\n"), std::string::npos);
  EXPECT_EQ(group.status, 0);

  const ProcessResult wrong = sandbox.lk({"shwo", "--json"});
  EXPECT_EQ(wrong.out, "");
  EXPECT_EQ(wrong.err.substr(0, wrong.err.find('\n')), "Error: Unknown command 'shwo'.");
  EXPECT_EQ(wrong.status, 64);
}

TEST(Program, reportsFailuresAsTextOrJSON) {
  const Sandbox sandbox;
  std::filesystem::create_directory(sandbox.home() / "Notes");
  const std::string folder = (sandbox.home() / "Notes").string();
  const ProcessResult text = sandbox.lk({"show", "Missing", "--collection", folder});
  EXPECT_EQ(text.err,
            "Error: Note \"Missing\" not found.\n"
            "  Hint: Use `lk list` to see all notes, or `lk search` to search.\n");
  EXPECT_EQ(text.status, 2);
  const ProcessResult json = sandbox.lk({"--json", "show", "Missing", "--collection", folder});
  EXPECT_EQ(json.out, "");
  EXPECT_EQ(json.err, R"({
  "error" : "note_not_found",
  "message" : "Note \"Missing\" not found.\n  Hint: Use `lk list` to see all notes, or `lk search` to search."
}
)");
  EXPECT_EQ(json.status, 2);
  // The raw words decide, so a title that reads "--json" does too.
  const ProcessResult title = sandbox.lk({"show", "--collection", folder, "--", "--json"});
  EXPECT_EQ(title.err.substr(0, 32), "{\n  \"error\" : \"note_not_found\",\n");
  EXPECT_NE(title.err.find("\"Note \\\"--json\\\" not found."), std::string::npos);
}

TEST(Program, endsQuietlyWhenItsReaderIsGone) {
  const Sandbox sandbox;
  const ProcessResult byDefault = shell(sandbox, "\"$LK\" help | head -1 >/dev/null");
  EXPECT_EQ(byDefault.err, "");
  // Under a parent that ignores the signal, the write fails instead.
  const ProcessResult ignored =
      shell(sandbox, "trap '' PIPE; { sleep 0.2; \"$LK\" help; echo $? >&2; } | true");
  EXPECT_EQ(ignored.err, "0\n");
}

TEST(Program, saysThatItsOutputCouldNotBeWritten) {
  const Sandbox sandbox;
  const ProcessResult full = shell(sandbox, "\"$LK\" help >/dev/full");
  EXPECT_EQ(full.err, "Error: Writing to standard output failed: No space left on device.\n");
  EXPECT_EQ(full.status, 1);
  const ProcessResult closed = shell(sandbox, "\"$LK\" help >&-");
  EXPECT_EQ(closed.err, "Error: Writing to standard output failed: Bad file descriptor.\n");
  EXPECT_EQ(closed.status, 1);
}

TEST(Program, usesNoStyleWhereItWasNotAskedFor) {
  const Sandbox sandbox;
  // script(1) gives the tool a terminal.
  const auto onTerminal = [&](const std::string& settings) {
    return shell(sandbox, settings + " script -qec '\"$LK\" help show' /dev/null").out;
  };
  EXPECT_EQ(sandbox.lk({"help", "show"}).out.find('\x1b'), std::string::npos);
  const std::string styled = onTerminal("TERM=xterm");
  ASSERT_FALSE(styled.empty()) << "script(1) isn't installed";
  EXPECT_NE(styled.find("\x1b[1mUsage:\x1b[0m"), std::string::npos);
  EXPECT_EQ(onTerminal("TERM=xterm NO_COLOR=1").find('\x1b'), std::string::npos);
  EXPECT_EQ(onTerminal("TERM=dumb").find('\x1b'), std::string::npos);
}

struct CompletionCase {
  const char* name;
  std::vector<std::string> words;  // the last one is being completed
  std::string candidates;          // in the shell's order
};

void PrintTo(const CompletionCase& row, std::ostream* out) {
  *out << row.name;
}

class BashCompletion : public testing::TestWithParam<CompletionCase> {};

TEST_P(BashCompletion, offersWhatFits) {
  const Sandbox sandbox;
  test::writeWhole(sandbox.home() / "a note.md", "x");
  std::string script = "source <(\"$LK\" --generate-completion-script bash)\nCOMP_WORDS=(lk";
  for (const std::string& word : GetParam().words) script += " '" + word + "'";
  script += ")\nCOMP_CWORD=" + std::to_string(GetParam().words.size()) +
            "\n_lk\n(IFS='|'; echo \"${COMPREPLY[*]}\")\n";
  const ProcessResult result = shell(sandbox, script);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out, GetParam().candidates + "\n");
}

const CompletionCase completions[] = {
    {"command", {"ta"}, "tags|tasks"},
    {"subcommand", {"tasks", "re"}, "remove|reset"},
    {"option", {"show", "--b"}, "--body|--backlinks"},
    {"option_of_default", {"tasks", "--due-to"}, "--due-today|--due-tomorrow"},
    {"option_after_value", {"tasks", "add", "--note", "set", "--st"}, "--status"},
    {"words", {"list", "--sort", ""}, "modified|created|title|size"},
    {"words_after_equals", {"list", "--sort", "=", "ti"}, "title"},
    {"file", {"create", "X", "--from", "a"}, "a note.md"},
    {"folder", {"collection", "add", "t"}, "tmp"},
    {"folder_before_command", {"--collection", "tm"}, "tmp"},
    {"after_global", {"--collection", "tmp", "sho"}, "show"},
    {"no_subcommand_after_argument", {"tags", "work", "re"}, ""},
    {"shell", {"--generate-completion-script", "z"}, "zsh"},
};
INSTANTIATE_TEST_SUITE_P(words, BashCompletion, testing::ValuesIn(completions),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(FishCompletion, offersWhatFits) {
  const Sandbox sandbox;
  ASSERT_EQ(sandbox.run("fish", {"--version"}).status, 0) << "fish isn't installed";
  const auto offered = [&](const std::string& line) {
    const std::string load = "\"$LK\" --generate-completion-script fish | source; ";
    return sandbox
        .run("fish", {"-c", load + "complete -C '" + line + "'"},
             {.environment = {{"LK", LK_TOOL_PATH}}})
        .out;
  };
  EXPECT_EQ(offered("lk tag"), "tags\tList tags, find notes by tag, and rename tags.\n");
  EXPECT_EQ(offered("lk tasks --due-to"),
            "--due-today\tShow tasks due today.\n--due-tomorrow\tShow tasks due tomorrow.\n");
  EXPECT_EQ(offered("lk tasks add --note set --st"),
            "--status\tInitial status (not-started, in-progress). Default: not-started.\n");
  // Some versions of fish print the option's description behind each value.
  const std::string priorities = offered("lk tasks add x --priority ");
  for (const char* value : {"high", "low", "medium"}) {
    EXPECT_TRUE(("\n" + priorities).find(std::string("\n") + value) != std::string::npos) << value;
  }
  EXPECT_EQ(offered("lk --collection x restor"), "restore\tRestore a note from the trash.\n");
}

TEST(CompletionScripts, areRightInTheEyesOfTheirShell) {
  const Sandbox sandbox;
  for (const std::string name : {"bash", "zsh", "fish"}) {
    const ProcessResult script = sandbox.lk({"--generate-completion-script", name});
    ASSERT_EQ(script.status, 0) << name;
    ASSERT_NE(script.out.find("unarchive"), std::string::npos) << name;
    test::writeWhole(sandbox.home() / name, script.out);
    const ProcessResult check = sandbox.run(name, {"-n", (sandbox.home() / name).string()});
    if (check.status == 127) continue;  // this shell isn't installed
    EXPECT_EQ(check.err, "") << name;
    EXPECT_EQ(check.status, 0) << name;
  }
}

}  // namespace
}  // namespace lk
