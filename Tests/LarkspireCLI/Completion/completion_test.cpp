// What a shell offers for titles, tags and other names: asked of the tool by hand, and typed at
// real shells.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LarkspireCLI/Support/ShellLine.h"
#include "Support/Process.h"
#include "Support/PseudoTerminal.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;

// --- Lines ---------------------------------------------------------------------------------------

// "a|b ; c|d" with the open quote and the kept bytes of the last word behind it.
std::string shown(const std::vector<ShellWords>& commands) {
  std::string text;
  for (const ShellWords& words : commands) {
    if (!text.empty()) text += " ; ";
    for (const ShellWord& word : words) text += (&word == &words.front() ? "" : "|") + word.text;
  }
  const ShellWord& last = commands.back().back();
  if (last.openQuote != 0) text += std::string(" ") + last.openQuote;
  return text + " " + std::to_string(last.kept);
}

TEST(ShellLine, isReadAsTheShellReadsIt) {
  const std::pair<const char*, const char*> rows[] = {
      {"", " 0"},
      {"lk show ", "lk|show| 0"},
      {"lk show Garden\\ pl", "lk|show|Garden pl 0"},
      {"lk show \"Garden pl", "lk|show|Garden pl \" 0"},
      {"lk show 'it\\", "lk|show|it\\ ' 0"},
      {"lk show \"a\\\"b\\c\\$", "lk|show|a\"b\\c$ \" 0"},
      {"lk show \"Plan\"b", "lk|show|Planb 4"},
      {"lk show ''", "lk|show| 0"},
      {"lk show Plan:b", "lk|show|Plan:b 5"},
      {"lk show Plan\\:b", "lk|show|Plan:b 0"},
      {"lk show --note=\"Ga", "lk|show|--note=Ga \" 7"},
      {"A=1 lk x | lk y&&lk z", "A=1|lk|x ; lk|y ; lk|z 0"},
      {"lk x;", "lk|x ;  0"},
      {"lk \\", "lk|\\ 0"},
  };
  for (const auto& [line, words] : rows) EXPECT_EQ(shown(shellCommands(line)), words) << line;
}

TEST(ShellLine, givesBackWhatWasQuoted) {
  std::string all;
  for (char c = ' '; c <= '~'; ++c) all += c;
  for (const std::string& value : {all, std::string("Grüße 日本"), std::string("a\\")}) {
    for (const std::string quote : {"", "\"", "'"}) {
      const std::string line =
          "lk x " + quote + shellQuoted(value, quote.empty() ? '\0' : quote.front()) + quote;
      const std::vector<ShellWords> commands = shellCommands(line);
      ASSERT_EQ(commands.size(), 1U) << line;
      ASSERT_EQ(commands.front().size(), 3U) << line;
      EXPECT_EQ(commands.front().back().text, value) << line;
    }
  }
}

// --- The tool ------------------------------------------------------------------------------------

constexpr std::string_view nasty = "It's \"quoted\" $HOME `x`!";

// A home with two collections: Garden, which is active, and Other.
class CompletionValues : public testing::Test {
 protected:
  CompletionValues() {
    fs::copy(fs::path(LK_SOURCE_ROOT) / "Samples/Garden", home() / "Garden",
             fs::copy_options::recursive);
    for (const std::string_view title :
         {nasty, std::string_view("Grüße 日本"), std::string_view("-dash first"),
          std::string_view("Plan: beds"), std::string_view("a\nb"), std::string_view(".hidden")}) {
      test::writeWhole(home() / "Garden" / (std::string(title) + ".md"), "");
    }
    fs::create_directories(home() / "Garden/.trash");
    test::writeWhole(home() / "Garden/.trash/Weeds.md", "");
    fs::create_directories(home() / "Garden/.queries");
    const std::string query = "8D116ECE-1738-47D9-BD9C-172411E20B8F";
    test::writeWhole(home() / "Garden/.queries" / (query + ".json"),
                     R"({"combiner": "all", "createdDate": "2026-03-14T09:26:53Z", "id": ")" +
                         query + R"(", "name": "Due Today", "rules": []})");
    test::writeWhole(home() / "Garden/.queries/57EE05CD-E009-42C7-BEBF-F20686734721.json", "{");
    fs::create_directory(home() / "Other");
    test::writeWhole(home() / "Other/Only here.md", "");
    for (const char* name : {"Garden", "Other"}) {
      EXPECT_EQ(sandbox.lk({"collection", "add", (home() / name).string()}).status, 0);
    }
  }

  const fs::path& home() const { return sandbox.home(); }

  std::string asked(const std::vector<std::string>& words) const {
    std::vector<std::string> line = {"__complete"};
    line.insert(line.end(), words.begin(), words.end());
    const test::ProcessResult result = sandbox.lk(line);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 0);
    return text::replacingAll(text::trimmed(result.out), "\n", "|");
  }

  test::Sandbox sandbox;
};

TEST_F(CompletionValues, areThoseOfTheCollectionThatTheLineNames) {
  const std::pair<std::vector<std::string>, std::string> rows[] = {
      {{"words", "note", "argument", "show"},
       "Compost|Foreword|Grüße 日本|Harvest|" + std::string(nasty) +
           "|Plan: beds|Planting plan|Seeds to order|The first bed|Tool shed|Water"},
      {{"words", "note", "value", "--collection", "~/Other"}, "Only here"},
      {{"words", "note", "value", "--collection=oth", "list"}, "Only here"},
      {{"words", "note", "value", "--collection", "nowhere"}, ""},
      {{"words", "note", "argument", "--", "--collection", "Other", "x"},
       "-dash first|Compost|Foreword|Grüße 日本|Harvest|" + std::string(nasty) +
           "|Plan: beds|Planting plan|Seeds to order|The first bed|Tool shed|Water"},
      {{"words", "trashed", "argument", "restore"}, "Weeds"},
      {{"words", "context", "value"}, "errand|garden|phone"},
      {{"words", "project", "value"}, "spring-sowing"},
      {{"words", "property", "value"}, "Project|manuscript-role|rating|status"},
      {{"words", "query", "argument"}, "Due Today"},
      {{"words", "collection", "value"}, "Garden|Other"},
      {{"words", "unheard", "value"}, ""},
      {{"words", "note"}, ""},
      {{"words", "note", "value", "\xff"}, ""},
      {{}, ""},
  };
  for (const auto& [words, values] : rows) {
    EXPECT_EQ(asked(words), values) << testing::PrintToString(words);
  }
  EXPECT_NE(("|" + asked({"words", "tag", "value"}) + "|").find("|garden/beds|"),
            std::string::npos);
}

TEST_F(CompletionValues, replaceTheEndOfALineOfBash) {
  const std::pair<std::string, std::string> rows[] = {
      {"lk show Pl", "Plan\\:\\ beds|Planting\\ plan"},
      {"lk show \"Pl", "Plan: beds|Planting plan"},
      {"lk show Plan:", "\\ beds"},
      {"lk show It", R"(It\'s\ \"quoted\"\ \$HOME\ \`x\`\!)"},
      {"lk show \"It", R"(It's \"quoted\" \$HOME \`x\`!)"},
      {"lk show 'It", R"(It'\''s "quoted" $HOME `x`!)"},
      {"echo x | lk show --collection \"oth\" O", "Only\\ here"},
      {"lk show -", ""},
      {"lk show -- -", "-dash\\ first"},
      {"lk show nothing", ""},
  };
  for (const auto& [line, values] : rows) {
    EXPECT_EQ(asked({"bash", "note", "argument", line}), values) << line;
  }
  EXPECT_EQ(asked({"bash", "note", "value", "lk tasks add x --note=Comp"}), "Compost");
  EXPECT_EQ(asked({"bash", "note", "value", "lk tasks add x --note -d"}), "-dash\\ first");
}

TEST(Completion, leavesNothingBehindAndNeverComplains) {
  const test::Sandbox sandbox;
  fs::create_directories(sandbox.home() / "data/Larkspire");
  const fs::path registry = sandbox.home() / "data/Larkspire/collections.json";
  test::writeWhole(registry, "{ broken");
  for (const char* kind : {"note", "tag", "project", "property", "collection", "query"}) {
    const test::ProcessResult result = sandbox.lk({"__complete", "words", kind, "value"});
    EXPECT_EQ(result.out + result.err, "") << kind;
    EXPECT_EQ(result.status, 0) << kind;
  }
  EXPECT_EQ(test::readWhole(registry), "{ broken");
  EXPECT_FALSE(fs::exists(sandbox.home() / "Documents"));
}

// --- Shells --------------------------------------------------------------------------------------

struct TypedCase {
  std::string keys;   // before the tabulator
  std::string words;  // what the tool is then called with
};

// The shells call this in place of the tool, except when it completes.
constexpr std::string_view standIn =
    "lk() { if [ \"$1\" = __complete ]; then command lk \"$@\"; else printf '<%s>' \"$@\"; "
    "echo '[typed]'; fi; }\n";

class ShellCompletion : public CompletionValues, public testing::WithParamInterface<std::string> {
 protected:
  // What stands between the last line feed and "[typed]".
  static std::string words(const std::string& shown) {
    const size_t end = shown.rfind("[typed]");
    const size_t start = shown.rfind('\n', end) + 1;
    return shown.substr(start, end - start);
  }
};

TEST_P(ShellCompletion, writesTitlesAsTheShellReadsThem) {
  const std::string shell = GetParam();
  if (sandbox.run(shell, {"--version"}).status == 127) GTEST_SKIP() << shell << " is not installed";
  test::writeWhole(home() / "script", sandbox.lk({"--generate-completion-script", shell}).out);
  const std::string loading = "PS1='ready> '\nsource ~/script\n" + std::string(standIn);
  test::writeWhole(home() / "bashrc", loading);
  test::writeWhole(home() / ".zshrc", "autoload -Uz compinit\ncompinit -u -D\n" + loading);
  const std::vector<std::string> arguments =
      shell == "bash" ? std::vector<std::string>{"--noprofile", "--rcfile", "bashrc", "-i"}
                      : std::vector<std::string>{"-d", "-i"};
  const std::string path =
      fs::path(LK_TOOL_PATH).parent_path().string() + ":" + std::getenv("PATH");
  test::PseudoTerminal terminal(
      sandbox, shell, arguments,
      {.environment = {{"PATH", path}, {"TERM", "dumb"}, {"ZDOTDIR", home().string()}}});
  const std::string quoted = "<show><" + std::string(nasty) + ">";
  const TypedCase rows[] = {
      {"lk show Planting", "<show><Planting plan>"},
      {"lk show Planting\\ p", "<show><Planting plan>"},
      {"lk show \"Planting p", "<show><Planting plan>"},
      {"lk show It", quoted},
      {"lk show \"It", quoted},
      {"lk show 'It", quoted},
      {"lk show Gr", "<show><Grüße 日本>"},
      {"lk show Plan\\:", "<show><Plan: beds>"},
      {"lk show -- -d", "<show><--><-dash first>"},
      {"lk tasks add x --note=\"Comp", "<tasks><add><x><--note=Compost>"},
      {"lk --collection ~/Other show O",
       "<--collection><" + home().string() + "/Other><show><Only here>"},
      {"lk tags list --collection Oth", "<tags><list><--collection><Other>"},
      {"lk query run Du", "<query><run><Due Today>"},
      {"lk rename Compost Pl", "<rename><Compost><Pl>"},
  };
  terminal.readUntil("ready> ");
  for (const TypedCase& row : rows) {
    terminal.type(row.keys + "\t\n");
    EXPECT_EQ(words(terminal.readUntil("[typed]")), row.words) << row.keys;
    terminal.readUntil("ready> ");
  }
}

INSTANTIATE_TEST_SUITE_P(shells, ShellCompletion, testing::Values("bash", "zsh"),
                         [](const auto& row) { return row.param; });

TEST_F(CompletionValues, areOfferedByFish) {
  if (sandbox.run("fish", {"--version"}).status == 127) GTEST_SKIP() << "fish is not installed";
  test::writeWhole(home() / "script", sandbox.lk({"--generate-completion-script", "fish"}).out);
  const std::string path =
      fs::path(LK_TOOL_PATH).parent_path().string() + ":" + std::getenv("PATH");
  const auto offered = [&](const std::string& line) {
    const test::ProcessResult result =
        sandbox.run("fish", {"--no-config", "-c", "source ~/script; complete -C " + line},
                    {.environment = {{"PATH", path}}});
    EXPECT_EQ(result.err, "");
    return result.out;
  };
  EXPECT_EQ(offered("'lk show Pl'"), "Plan: beds\nPlanting plan\n");
  EXPECT_EQ(offered("'lk show It'"), std::string(nasty) + "\n");
  EXPECT_EQ(offered("'lk --collection ~/Other show \"O'"), "Only here\n");
  EXPECT_EQ(offered("'lk show -- -d'"), "-dash first\n");
  EXPECT_EQ(offered("'lk rename Compost Pl'"), "");
  EXPECT_EQ(offered("'lk tasks add x --note Comp'").substr(0, 7), "Compost");
  EXPECT_EQ(offered("'lk tags na re'"), "");
}

}  // namespace
}  // namespace lk
