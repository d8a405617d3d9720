// The application's index and the files answer alike; an index that cannot be used is said once,
// left as it is, and the files answer.

#include <algorithm>

#include "LarkspireCLI/Support/CacheReader.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/FileScan.h"
#include "ReadingFixture.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using test::ProcessResult;
using test::readWhole;

class Index : public test::Reading {
 protected:
  Index() {
    projectsID =
        note("Projects/Shed", "[[Plan]] #work/site\n\n- [ ] Mend due:2026-01-01 priority:high", 1);
    note("Plan", "# Plan\n\n- [x] Draw done:2026-03-01 #Work\n- [/] Sow context:garden project:x",
         2, [](LKFileFrontMatter& block) { block.userProperties["status"] = "Draft"; });
    note("Old plan", "See [[plan]] and [[Projects/Shed]] and [[Shed]]. #work caf\u00E9", 3,
         [](LKFileFrontMatter& block) { block.isArchived = true; });
    note("\uD55C\uAE00", "[[PLAN]] #\uD55C\uAE00", 2);
    note(".daily/20260310", "[[Plan]] #work", 4, [](LKFileFrontMatter& block) {
      block.dailyDate = Day{2026, 3, 10};
    });
    note(".trash/Plan", "[[Plan]] #work #gone", 0);
    note("6F0C2A9E-41B7-4E55-9A7C-0E1B2C3D4E60", "nameless", 5);
  }

  UUID projectsID;
};

TEST_F(Index, AnswersAsTheFilesDo) {
  plantStore();
  ASSERT_EQ(parseJson(lk("collection|info|--json").out).at("indexSource"), "app");
  ASSERT_EQ(parseJson(lk("collection|info|--json|--quiet", {{"LK_FILE_INDEX", "1"}}).out)
                .at("indexSource"),
            "files");
  for (const std::string& line :
       std::vector<std::string>{"list",
                                "list|--include-daily|--include-trashed|--include-archived",
                                "list|--tag|work|--include-subtags|--include-archived",
                                "list|--has-overdue",
                                "list|--has-tasks|--sort|title",
                                "list|--sort|size|--reverse",
                                "list|--property|status=Draft",
                                "list|--archived",
                                "search|plan|--titles-only",
                                "search|plan|--tag|work",
                                "search|plan",
                                "backlinks|Plan",
                                "backlinks|plan|--context",
                                "backlinks|shed",
                                "backlinks|Gone",
                                "tags",
                                "tags|list|WORK",
                                "tags|list|\uD55C\uAE00",
                                "tags|list|gone",
                                "tags|list|--prefix|wo",
                                "show|Plan|--tasks",
                                "show|shed|--tasks",
                                "show|Plan|--backlinks",
                                "show|old",
                                "show|" + projectsID.text(),
                                "show|--id|" + UUID().text(),
                                "show|20260310|--body"}) {
    for (const std::string form : {"", "|--json"}) {
      const ProcessResult store = lk(line + form);
      const ProcessResult files = lk(line + form + "|--quiet", {{"LK_FILE_INDEX", "1"}});
      EXPECT_EQ(store.out, files.out) << line << form;
      EXPECT_EQ(store.err, files.err) << line << form;
      EXPECT_EQ(store.status, files.status) << line << form;
    }
  }
}

TEST_F(Index, IsLeftForTheFilesByExactlyOne) {
  plantStore();
  EXPECT_EQ(lk("list", {{"LK_FILE_INDEX", "true"}}).err, "");
  EXPECT_EQ(lk("list", {{"LK_FILE_INDEX", "1"}}).err, kHint);
}

TEST_F(Index, IsTheNewestOneWhereNoCollectionWasNamed) {
  plantStore();
  fs::create_directory(sandbox.home() / "Other");
  ASSERT_EQ(sandbox.lk({"collection", "add", "Other", "--activate"}).status, 0);
  const ProcessResult listed = sandbox.lk({"list", "--json"});
  EXPECT_EQ(listed.out, lk("list|--json").out);
  // But no note of another folder is found, let alone changed.
  EXPECT_EQ(sandbox.lk({"edit", "Plan", "--append", "x"}).status, 2);
  EXPECT_EQ(sandbox.lk({"edit", projectsID.text(), "--append", "x"}).status, 2);
}

TEST_F(Index, ThatIsOlderThanTheFilesMisleadsNobody) {
  plantStore();
  note("New/Shed", "newer, and first by its path", 0);
  fs::rename(file("Plan"), file("Scheme"));
  EXPECT_EQ(lk("show|scheme|--body").status, 0);
  EXPECT_EQ(lk("show|Plan|--body").out, "[[Plan]] #work #gone\n");  // the trashed one
  fs::remove(file("Projects/Shed"));
  EXPECT_EQ(lk("show|Shed|--body").out, "newer, and first by its path\n");
  EXPECT_EQ(lk("show|" + projectsID.text()).status, 2);
}

struct DamagedStore {
  const char* name;
  std::function<void(const fs::path& store)> damage;
};

TEST_F(Index, ThatCannotBeUsedIsSaidOnceAndLeftAsItIs) {
  plantStore();
  const std::string expected = lk("list|--json", {{"LK_FILE_INDEX", "1"}}).out;
  const std::vector<DamagedStore> cases = {
      {"truncated", [](const fs::path& store) { fs::resize_file(store, 1000); }},
      {"empty", [](const fs::path& store) { fs::resize_file(store, 0); }},
      {"zeros", [](const fs::path& store) { test::writeWhole(store, std::string(65'536, '\0')); }},
      {"words", [](const fs::path& store) { test::writeWhole(store, "not a store at all"); }},
      {"folder",
       [](const fs::path& store) {
         fs::remove(store);
         fs::create_directory(store);
       }},
  };
  for (const DamagedStore& each : cases) {
    fs::remove_all(test::applicationSupport(sandbox.home()));
    plantStore();
    for (const char* companion : {"-wal", "-shm"}) fs::remove(storePath().string() + companion);
    each.damage(storePath());
    const std::string before = fs::is_directory(storePath()) ? "" : readWhole(storePath());
    const ProcessResult loud = lk("list|--json");
    EXPECT_EQ(loud.out, expected) << each.name;
    EXPECT_EQ(loud.status, 0) << each.name;
    const std::string opening =
        "Note: lk read your note files directly, because the index can't be used: ";
    EXPECT_TRUE(loud.err.starts_with(opening)) << each.name << ": " << loud.err;
    EXPECT_NE(loud.err.find(storePath().string()), std::string::npos) << each.name << loud.err;
    EXPECT_EQ(std::ranges::count(loud.err, '\n'), 1) << each.name << loud.err;
    EXPECT_EQ(lk("list|--json|--quiet").err, "") << each.name;
    EXPECT_EQ(fs::is_directory(storePath()) ? "" : readWhole(storePath()), before) << each.name;
  }
}

TEST_F(Index, OfTheFilesIsBuiltAnewOnlyForPartsThatItLacks) {
  collectionRun() = {notes(), UnavailablePolicy{}, true};
  CacheReader titles(LKParts::none);
  const auto rows = titles.fetchNotes();
  ASSERT_EQ(rows.size(), 7U);
  CacheReader tags(LKParts::tags);
  EXPECT_FALSE(tags.fetchTags().empty());
  CacheReader again(LKParts::tags);
  EXPECT_EQ(again.container(), tags.container());
  EXPECT_NE(tags.container(), titles.container());
  EXPECT_FALSE(rows.front()->title.empty());  // still there
  const LKNote* found = tags.fetchNoteTitled("PLAN");
  ASSERT_NE(found, nullptr);
  EXPECT_FALSE(found->isTrashed);
  EXPECT_EQ(tags.noteCount(), 6U);
  collectionRun() = {};
}

TEST_F(Index, CanBeDoneWithoutForListsOfNotesAndTags) {
  std::vector<std::string> found;
  for (const LKNote& each : scanNotesFromFiles(notes())) {
    found.push_back(each.title + (each.isTrashed ? " trashed" : "") +
                    (each.isArchived() ? " archived" : "") + (each.dailyDate ? " daily" : ""));
  }
  std::ranges::sort(found);
  EXPECT_EQ(found, (std::vector<std::string>{"20260310 daily", "Old plan archived", "Plan",
                                             "Plan trashed", "Shed", "Untitled", "\uD55C\uAE00"}));
  EXPECT_EQ(scanTagsFromFiles(notes()),
            (std::vector<TagRow>{{"Work", 1}, {"work", 2}, {"work/site", 1}, {"\uD55C\uAE00", 1}}));
}

}  // namespace
}  // namespace lk
