// What `lk list`, `lk backlinks` and `lk tags list` show of a collection, and `lk show --tasks`.

#include <sys/stat.h>

#include "ReadingFixture.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using test::ProcessResult;

class Listing : public test::Reading {
 protected:
  Listing() {
    note("Plan 10", "# Plan\n\n- [ ] Sow due:2020-01-01\n- [x] Draw\n\n#work/site #Home", 1,
         [](LKFileFrontMatter& block) { block.isFavourite = true; });
    note("Plan 2", "See [[Plan 10]] and [[plan 10]].\n\n- [ ] Rest #work", 2,
         [](LKFileFrontMatter& block) { block.userProperties["status"] = "Draft"; });
    note("Work/Old", "A long body, the longest of them all, #workshop. [[Plan 10]]", 5,
         [](LKFileFrontMatter& block) { block.userProperties["status"] = "archived"; });
    note(".daily/20260310", "Done today. #home", 4, [](LKFileFrontMatter& block) {
      block.dailyDate = Day{2026, 3, 10};
    });
    note(".trash/Gone", "[[Plan 2]] #gone #work", 3);
  }
};

struct ListCase {
  const char* name;
  std::string options;
  std::vector<std::string> titles;
};

TEST_F(Listing, KeepsWhatTheOptionsAskFor) {
  const std::vector<ListCase> cases = {
      {"the newest change first", "", {"Plan 10", "Plan 2"}},
      {"archived too", "|--include-archived", {"Plan 10", "Plan 2", "Old"}},
      {"archived alone", "|--archived|--include-archived", {"Old"}},
      {"daily too", "|--include-daily", {"Plan 10", "Plan 2", "20260310"}},
      {"trashed too", "|--include-trashed", {"Plan 10", "Plan 2", "Gone"}},
      {"a tag in any case", "|--tag|HOME", {"Plan 10"}},
      {"a tag with its mark", "|--tag|#home|--include-daily", {"Plan 10", "20260310"}},
      {"a tag exactly", "|--tag|work", {"Plan 2"}},
      {"a tag and those below", "|--tag|work|--include-subtags", {"Plan 10", "Plan 2"}},
      {"two tags", "|--tag|home|--tag|work/site", {"Plan 10"}},
      {"a property", "|--property|status=Draft", {"Plan 2"}},
      {"a property in another case", "|--property|status=draft", {}},
      {"two properties", "|--property|status=Draft|--property|x=y", {}},
      {"after a day, itself included", "|--modified-after|2026-03-13", {"Plan 10"}},
      {"before a day", "|--modified-before|2026-03-13", {"Plan 2"}},
      {"favourites", "|--favourites", {"Plan 10"}},
      {"with tasks", "|--has-tasks", {"Plan 10", "Plan 2"}},
      {"with overdue tasks", "|--has-overdue", {"Plan 10"}},
      {"by title", "|--sort|title", {"Plan 2", "Plan 10"}},
      {"by creation", "|--sort|created|--include-archived", {"Plan 10", "Plan 2", "Old"}},
      {"by size", "|--sort|size|--include-archived", {"Plan 10", "Old", "Plan 2"}},
      {"by nothing known", "|--sort|nonsense", {"Plan 10", "Plan 2"}},
      {"the first of the reversed", "|--reverse|--limit|1", {"Plan 2"}},
      {"none", "|--limit|0", {}},
  };
  for (const ListCase& each : cases) {
    EXPECT_EQ(titles("list" + each.options), each.titles) << each.name;
  }
}

struct ReplyCase {
  std::string line;
  std::string out;
  std::string err = "";
  int status = 0;
};

TEST_F(Listing, AnswersInTheseWords) {
  const std::string plan =
      "Plan 10 *  2026-03-13 09:26  #Home #work/site  (1/2 tasks, 1 overdue)\n";
  const std::string daily = "Tuesday 10 March 2026  2026-03-10 09:26  #home\n";
  const std::string gone = "1 notes reference \"Plan 2\":\nGone (line 1): [[Plan 2]] #gone #work\n";
  const std::vector<ReplyCase> cases = {
      {"list|--include-daily", plan + "Plan 2  2026-03-12 09:26  #work  (1/1 tasks)\n" + daily},
      {"list|--tag|none", "No notes found.\n"},
      {"list|--modified-after|soonish", "",
       "Error: \"soonish\" is no date. Use YYYY-MM-DD, e.g. 2026-03-14.\n", 1},
      {"list|--limit=-1", "", "Error: --limit takes a number from 0 upwards.\n", 1},
      {"list|--property|status", "",
       "Error: \"status\" is not a property. Use key=value, e.g. status=Draft.\n", 1},
      {"backlinks|plan 10",
       "2 notes reference \"Plan 10\":\nOld (line 1)\nPlan 2 (line 1)\nPlan 2 (line 1)\n"},
      {"backlinks|Plan 2|--context", gone},
      {"backlinks|Old", "No notes reference \"Old\".\n"},
      {"backlinks|Nowhere", "",
       "Error: Note \"Nowhere\" not found.\n  Hint: Use `lk list` to see all notes, or `lk search` "
       "to search.\n",
       2},
      {"show|Plan 10|--tasks", "[ ] Sow  due:2020-01-01  Plan 10\n[x] Draw  Plan 10\n"},
      {"show|Plan 2|--backlinks", gone},
      {"tags", "#home (1 notes)\n#Home (1 notes)\n#work (1 notes)\n#work/site (1 notes)\n"},
      {"tags|list|--prefix|WORK/", "#work/site (1 notes)\n"},
      {"tags|list|--prefix|x", "No tags found.\n"},
      {"tags|list|#HOME", plan + daily},
      {"tags|list|nothing", "", "Error: Tag \"nothing\" not found.\n", 1},
  };
  for (const ReplyCase& each : cases) {
    const ProcessResult result = lk(each.line + "|--quiet");
    EXPECT_EQ(result.out, each.out) << each.line;
    EXPECT_EQ(result.err, each.err) << each.line;
    EXPECT_EQ(result.status, each.status) << each.line;
  }
}

TEST_F(Listing, SaysOnceThatItReadsFilesAndHowToBeFaster) {
  EXPECT_EQ(lk("list").err, kHint);
  EXPECT_EQ(lk("backlinks|Plan 2").err, kHint);
  EXPECT_EQ(lk("list|--quiet").err, "");
  EXPECT_EQ(lk("list|--quiet").out, lk("list").out);
  EXPECT_EQ(lk("search|body").err, "");  // needs no index
  EXPECT_EQ(lk("show|plan 2").err, "");
}

TEST_F(Listing, ListsAPlainFileAndADuplicateOnceAndPassesOverTheRest) {
  test::writeWhole(notes() / "Plain.MD", "just words #plain");
  fs::copy(file("Plan 2"), file("Plan 2 copy"));
  test::writeWhole(notes() / "notes.txt", "no note");
  test::writeWhole(notes() / "Latin.md", "caf\xE9");
  ASSERT_EQ(mkfifo((notes() / "Pipe.md").c_str(), 0600), 0);
  fs::create_directory_symlink(notes(), notes() / "Loop");
  EXPECT_EQ(titles("list|--sort|title"),
            (std::vector<std::string>{"Plain", "Plan 2 copy", "Plan 10"}));
  EXPECT_EQ(titles("search|--titles-only|PLA"),
            (std::vector<std::string>{"Plain", "Plan 10", "Plan 2 copy"}));
}

TEST_F(Listing, DescribesTheCollection) {
  fs::create_directory(notes() / ".attachments");
  test::writeWhole(notes() / ".attachments/bed.png", std::string(1500, 'x'));
  test::writeWhole(notes() / ".attachments/lost.pdf", "x");
  test::writeWhole(notes() / ".attachments/~$bed.docx", "x");
  note("Picture", "![](.attachments/bed.png)");
  const Json info = parseJson(lk("collection|info|--json|--quiet").out);
  EXPECT_EQ(info, Json({{"collection", notes().string()},
                        {"mode", "larkspire"},
                        {"notes", 5},
                        {"trash", 1},
                        {"dailyNotes", 1},
                        {"archivedNotes", 1},
                        {"tags", 4},
                        {"attachments", 2},
                        {"attachmentsReferenced", 1},
                        {"attachmentsOrphaned", 1},
                        {"attachmentBytes", 1501},
                        {"cacheAvailable", false},
                        {"indexSource", "files"}}));
}

TEST_F(Listing, DescribesWhereEverythingComesFrom) {
  const std::string report = lk("collection|doctor|--quiet").out;
  const std::string folder = notes().string();
  EXPECT_EQ(report,
            "Larkspire CLI — collection doctor\n\n"
            "  --collection arg : " +
                folder +
                "\n"
                "  Documents dir    : " +
                folder +
                "\n"
                "  Config dir       : " +
                folder +
                "/.config\n"
                "  terminology.json : absent (using defaults)\n"
                "  Terminology      : project / projects\n"
                "  Policy           : unavailable (no app cache for this folder)\n"
                "  Store            : (none)\n"
                "  Available        : yes\n"
                "  Reading          : an index built from the note files (slower)\n"
                "  Launched from    : (no app — ssh, launchd or cron)\n"
                "\nApp container registry (com.larkspire.Larkspire-Mac):\n"
                "  Support dir      : " +
                test::applicationSupport(sandbox.home()).string() +
                "\n"
                "  (not found — the Larkspire app has never run on this Mac;\n"
                "   commands read the note files instead.)\n"
                "  Notes in index   : 4\n"
                "  App index access : no index for this collection\n");
  plantStore();
  const Json planted = parseJson(lk("collection|doctor|--json").out);
  EXPECT_EQ(planted.at("reading"), "the app's index");
  EXPECT_EQ(planted.at("store"), storePath().string());
  EXPECT_EQ(planted.at("notesInIndex"), "4");
  EXPECT_EQ(planted.at("appIndexAccess"), "readable");
}

TEST_F(Listing, LooksAtAFreshMachineWithoutMakingAnything) {
  const ProcessResult info = sandbox.lk({"collection", "info"});
  EXPECT_EQ(info.status, 3);
  EXPECT_EQ(sandbox.lk({"collections"}).status, 0);
  for (const auto& entry : fs::directory_iterator(sandbox.home())) {
    const std::string name = entry.path().filename();
    EXPECT_TRUE(name == "Notes" || name == "tmp") << name;
  }
}

}  // namespace
}  // namespace lk
