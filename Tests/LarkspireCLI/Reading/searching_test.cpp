// What `lk search` finds, prints and refuses.

#include "ReadingFixture.h"

namespace lk {
namespace {

using test::ProcessResult;

class Searching : public test::Reading {
 protected:
  Searching() {
    note("Alpha", "first line\na.b and A.B\n\nlast a.b #work", 0,
         [](LKFileFrontMatter& block) { block.userProperties["motto"] = "hidden words"; });
    note("Beta/Nested", "axb\n\tindented words\nStra\u00DFe \u00C9T\u00C9 #work/sub", 1);
    note(".trash/Gone", "a.b", 2);
    note(".daily/20260310", "words of the day #work", 3, [](LKFileFrontMatter& block) {
      block.dailyDate = Day{2026, 3, 10};
    });
    test::writeWhole(notes() / "Plain.md", "---\nnot: ours\r\nplain words\r\n");
    test::writeWhole(notes() / "Latin.md", "words caf\xE9");
    test::writeWhole(notes() / "notes.txt", "words");
  }
};

struct SearchCase {
  const char* name;
  std::string words;  // separated by "|"
  std::string out;
  std::string err = "";
  int status = 0;
};

TEST_F(Searching, PrintsTheLinesOfEachNoteInPathOrder) {
  const std::vector<SearchCase> cases = {
      {"words are no pattern", "a.b",
       "Alpha\n  line 2: a.b and A.B\n  line 4: last a.b #work\n1 notes with matches.\n"},
      {"a pattern", "^a.b|--regex",
       "Alpha\n  line 2: a.b and A.B\nNested\n  line 1: axb\n2 notes with matches.\n"},
      {"a pattern's line ends before its carriage return", "words$|--regex",
       "Nested\n  line 2: \tindented words\nPlain\n  line 3: plain words\n2 notes with matches.\n"},
      {"a pattern never reaches over a line", "line\\s+a|--regex",
       "No matches found for \"line\\s+a\".\n"},
      {"not in the block, the trash, daily notes, other files or other encodings", "words",
       "Nested\n  line 2: \tindented words\nPlain\n  line 3: plain words\n2 notes with matches.\n"},
      {"a tab that the file has", "\tindented",
       "Nested\n  line 2: \tindented words\n1 notes with matches.\n"},
      {"any case beyond ASCII", "\u00E9t\u00E9",
       "Nested\n  line 3: Stra\u00DFe \u00C9T\u00C9 #work/sub\n1 notes with matches.\n"},
      {"context, shared lines once", "a.b|--context|1",
       "Alpha\n  line 1- first line\n  line 2: a.b and A.B\n  line 3- \n  line 4: last a.b #work\n"
       "1 notes with matches.\n"},
      {"a limit of notes", "words|--limit|1",
       "Nested\n  line 2: \tindented words\n1 notes with matches.\n"},
      {"notes of a tag, daily ones too", "words|--tag|work",
       "Tuesday 10 March 2026\n  line 1: words of the day #work\n1 notes with matches.\n"},
      {"notes of a tag and those below", "words|--tag|#Work|--include-subtags",
       "Tuesday 10 March 2026\n  line 1: words of the day #work\n"
       "Nested\n  line 2: \tindented words\n2 notes with matches.\n"},
      {"nothing", "no such words", "No matches found for \"no such words\".\n"},
      {"nothing in JSON", "no such words|--json", "[]\n"},
      {"titles", "ALP|--titles-only", "Alpha  2026-03-14 09:26  #work\n"},
      {"no titles", "gone|--titles-only", "No notes found.\n"},
      {"a bad pattern", "(|--regex", "",
       "Error: Invalid search pattern: missing closing parenthesis at offset 1\n", 1},
      {"a context below zero", "x|--context=-1", "",
       "Error: --context takes a number from 0 upwards.\n", 1},
  };
  for (const SearchCase& each : cases) {
    const ProcessResult result = lk("search|--quiet|" + each.words);
    EXPECT_EQ(result.out, each.out) << each.name;
    EXPECT_EQ(result.err, each.err) << each.name;
    EXPECT_EQ(result.status, each.status) << each.name;
  }
}

TEST_F(Searching, GivesScriptsEveryMatchWithItsContext) {
  const Json found = parseJson(lk("search|a.b|--context|2|--json").out);
  EXPECT_EQ(found, parseJson(R"([{"filePath":")" + file("Alpha").string() + R"(","matches":[
      {"context":["first line","","last a.b #work"],"lineNumber":2,"text":"a.b and A.B"},
      {"context":["a.b and A.B",""],"lineNumber":4,"text":"last a.b #work"}],
      "noteTitle":"Alpha"}])"));
  // The streamed document has the form of every other one.
  const std::string out = lk("search|words|--json").out;
  EXPECT_EQ(out, printJson(parseJson(out)) + "\n");
}

TEST_F(Searching, EndsAHostilePatternWithAnError) {
  note("Bait", std::string(60, 'a') + "!");
  const ProcessResult result = lk("search|--regex|(a+)+$");
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.err.find("Error: The search pattern takes too long: "), std::string::npos)
      << result.err;
}

TEST_F(Searching, HighlightsOnATerminalAlone) {
  note("Escape", "red \x1b[31m words", 0);
  const auto onTerminal = [&](const std::string& settings) {
    return sandbox
        .run("/bin/sh", {"-c", settings + " script -qec \"'" + LK_TOOL_PATH +
                                   "' search words --collection Notes\" /dev/null"})
        .out;
  };
  const std::string styled = onTerminal("TERM=xterm");
  ASSERT_FALSE(styled.empty()) << "script(1) isn't installed";
  EXPECT_NE(styled.find("  line 1: red [31m \x1b[1;31mwords\x1b[0m"), std::string::npos) << styled;
  for (const char* settings : {"TERM=xterm NO_COLOR=1", "TERM=dumb"}) {
    EXPECT_EQ(onTerminal(settings).find("\x1b[1"), std::string::npos) << settings;
  }
}

}  // namespace
}  // namespace lk
