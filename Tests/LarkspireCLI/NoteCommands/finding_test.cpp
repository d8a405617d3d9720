// How a reference finds its note, and what the commands take from standard input.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/Platform/Files.h"
#include "LarkspireCLI/Support/CacheReader.h"
#include "LarkspireCLI/Support/NoteFinder.h"
#include "Support/Process.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using test::ProcessResult;

// A collection in which every way of finding has something to find, and to mistake it for.
class Finding : public testing::Test {
 protected:
  Finding() {
    note("Garden plan", 1);
    note("Old garden", 5);
    note("Projects/Shed", 2);
    note("Projects/garden PLAN", 9);
    note("caf\u00E9", 3);
    note(".daily/20260314", 4);
    note(".trash/Trashed", 6);
    note(".trash/Shed", 0);
    note(".trash/Old", 0);
    note("Projects/.daily/20250101", 10);
    note("Projects/.trash/Dropped", 11);
    note(".templates/Meeting", 12);
    note(".attachments/Scanned", 13);
    note("Trip.textbundle/Hidden in a package", 7);
    note("6F0C2A9E-41B7-4E55-9A7C-0E1B2C3D4E5F", 8);
    test::writeWhole(folder / "Plain.MD", "no block");
    fs::create_directory(folder / "Folder.md");
  }

  void note(const std::string& path, int age) {
    LKFileFrontMatter block;
    block.id = UUID::random();
    const fs::path file = folder.path() / (path + ".md");
    fs::create_directories(file.parent_path());
    test::writeWhole(file, serialize(block, path));
    setModified(file, {1'700'000'000 - age * 1000, 0});
    ids[path] = block.id;
  }

  std::string found(const std::string& reference) {
    CacheReader cache(LKParts::none);
    const auto result =
        NoteFinder::resolve(reference, folder.path(), cache, [](const std::string&) {});
    return result ? result->url.lexically_relative(folder.path()).string() : "nothing";
  }

  const test::TempFolder folder;
  std::map<std::string, UUID> ids;
};

TEST_F(Finding, PrefersTheExactTitleThenAnyCaseThenAPart) {
  EXPECT_EQ(found("Garden plan"), "Garden plan.md");
  EXPECT_EQ(found("garden PLAN"), "Projects/garden PLAN.md");
  EXPECT_EQ(found("GARDEN PLAN"), "Garden plan.md");
  EXPECT_EQ(found("garden"), "Garden plan.md");  // the youngest of three
  EXPECT_EQ(found("shed"), "Projects/Shed.md");
  EXPECT_EQ(found("CAFE\u0301"), "caf\u00E9.md");
  EXPECT_EQ(found("20260314"), ".daily/20260314.md");
  EXPECT_EQ(found("untitled"), "6F0C2A9E-41B7-4E55-9A7C-0E1B2C3D4E5F.md");
  EXPECT_EQ(found("Plain"), "Plain.MD");
}

TEST_F(Finding, LooksIntoTheHiddenFoldersThatListsLookInto) {
  EXPECT_EQ(found("20250101"), "Projects/.daily/20250101.md");
  EXPECT_EQ(found("Dropped"), "Projects/.trash/Dropped.md");
  EXPECT_EQ(found(ids.at("Projects/.trash/Dropped").text()), "Projects/.trash/Dropped.md");
  EXPECT_EQ(found("meeting"), ".templates/Meeting.md");
  EXPECT_EQ(found("Scanned"), "nothing");
  EXPECT_EQ(found("Drop"), "nothing");  // a part of a trashed title
}

TEST_F(Finding, FollowsALinkToTheDailyNotes) {
  fs::rename(folder / ".daily", folder / ".elsewhere");
  fs::create_directory_symlink(".elsewhere", folder / ".daily");
  EXPECT_EQ(found("20260314"), ".daily/20260314.md");
}

TEST_F(Finding, FindsATrashedNoteByItsWholeTitleWhereNoOtherHasIt) {
  EXPECT_EQ(found("trashed"), ".trash/Trashed.md");
  EXPECT_EQ(found("Shed"), "Projects/Shed.md");
  EXPECT_EQ(found("Old"), ".trash/Old.md");  // and not "Old garden", which somebody may delete
}

TEST_F(Finding, LeavesOutPartsOfTrashedTitlesPackagesFoldersAndWhatLiesOutside) {
  for (const char* reference : {"Trash", "Hidden in a package", "Folder", "nothing like it", "",
                                "../outside", "Projects/Shed", ".daily/20260314", "/etc/passwd"}) {
    EXPECT_EQ(found(reference), "nothing") << reference;
  }
}

TEST_F(Finding, LooksForAUUIDInTheBlocksAlone) {
  EXPECT_EQ(found(ids.at("Projects/Shed").text()), "Projects/Shed.md");
  EXPECT_EQ(found(ids.at(".daily/20260314").lowercaseText()), ".daily/20260314.md");
  EXPECT_EQ(found(ids.at(".trash/Trashed").text()), ".trash/Trashed.md");
  // A file of that name has another id.
  EXPECT_EQ(found("6F0C2A9E-41B7-4E55-9A7C-0E1B2C3D4E5F"), "nothing");
}

// A copy that a sync program left: what is listed under an id is what the id finds.
TEST_F(Finding, TakesOfFilesThatShareAnIDTheOneThatIsListed) {
  LKFileFrontMatter block;
  block.id = UUID::random();
  for (const char* path : {".trash/a.md", "b.md", "Projects/aa.md", "c.md"}) {
    test::writeWhole(folder / path, serialize(block, "body"));
  }
  EXPECT_EQ(found(block.id.text()), "Projects/aa.md");
}

TEST_F(Finding, ReadsABlockOfAnySize) {
  LKFileFrontMatter block;
  block.id = UUID::random();
  for (int i = 0; i < 2000; ++i) block.taskEntries.push_back({i, UUID::random(), "12345678"});
  test::writeWhole(folder / "Many tasks.md", serialize(block, "body"));
  EXPECT_EQ(found(block.id.text()), "Many tasks.md");
}

struct InputCase {
  std::string name;
  std::string redirection;
  std::string body;
};

class StandardInput : public testing::TestWithParam<InputCase> {};

TEST_P(StandardInput, CountsOnlyWhenItHoldsData) {
  const test::Sandbox sandbox;
  fs::create_directory(sandbox.home() / "Notes");
  test::writeWhole(sandbox.home() / "file.txt", "from a file");
  test::writeWhole(sandbox.home() / "marked.txt", "\xEF\xBB\xBF# H");
  const std::string tool = std::string("'") + LK_TOOL_PATH + "' ";
  ASSERT_EQ(sandbox.lk({"create", "X", "--content", "old", "--collection", "Notes"}).status, 0);
  const ProcessResult edited = sandbox.run(
      "/bin/sh", {"-c", tool + "edit X --favourite --collection Notes " + GetParam().redirection});
  ASSERT_EQ(edited.status, 0) << edited.err;
  EXPECT_EQ(sandbox.lk({"show", "X", "--body", "--collection", "Notes"}).out, GetParam().body);
}

INSTANTIATE_TEST_SUITE_P(Kinds, StandardInput,
                         testing::Values(InputCase{"nothing", "</dev/null", "old\n"},
                                         InputCase{"closed", "<&-", "old\n"},
                                         InputCase{"a_file", "<file.txt", "from a file\n"},
                                         InputCase{"with_a_mark", "<marked.txt", "# H\n"},
                                         InputCase{"text_option_wins", "--append a <file.txt",
                                                   "old\n\na\n"}),
                         [](const auto& row) { return row.param.name; });

struct EditCase {
  std::string name;
  std::string body;
  std::vector<std::string> options;
  std::string result;
};

class Edits : public testing::TestWithParam<EditCase> {};

TEST_P(Edits, MakeThisBody) {
  const test::Sandbox sandbox;
  fs::create_directory(sandbox.home() / "Notes");
  ASSERT_EQ(
      sandbox.lk({"create", "X", "--content", GetParam().body, "--collection", "Notes"}).status, 0);
  std::vector<std::string> arguments = {"edit", "X", "--collection", "Notes"};
  arguments.insert(arguments.end(), GetParam().options.begin(), GetParam().options.end());
  const ProcessResult edited = sandbox.lk(arguments);
  ASSERT_EQ(edited.status, 0) << edited.err;
  const std::string file = test::readWhole(sandbox.home() / "Notes/X.md");
  EXPECT_EQ(file.substr(file.find("---\n", 4) + 4), GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(
    Options, Edits,
    testing::Values(
        EditCase{"content_with_line_feeds", "old", {"--content", "a\\nb"}, "a\nb"},
        EditCase{"content_from_elsewhere", "old", {"--content", "a\r\n      b\r\n"}, "a\n\t  b\n"},
        EditCase{"append_to_nothing", "", {"--append", "a"}, "\n\na\n"},
        EditCase{"append_after_a_line_feed", "x\n", {"--append", "a"}, "x\n\na\n"},
        EditCase{"append_after_text", "x", {"--append", "a"}, "x\n\na\n"},
        EditCase{"prepend_after_heading",
                 "intro\n# H\nrest",
                 {"--prepend-after-heading", "new"},
                 "intro\n# H\n\nnew\nrest"},
        EditCase{
            "prepend_without_heading", "rest", {"--prepend-after-heading", "new"}, "new\n\nrest"},
        EditCase{"prepend_after_a_heading_alone",
                 "# H",
                 {"--prepend-after-heading", "new"},
                 "# H\n\nnew"},
        EditCase{"prepend_after_a_heading_below_an_empty_line",
                 "old",
                 {"--content", "\\n# H\\nrest", "--prepend-after-heading", "new"},
                 "\n# H\n\nnew\nrest"},
        EditCase{"all_three_in_order",
                 "old",
                 {"--append", "z", "--prepend-after-heading", "p", "--content", "# H"},
                 "# H\n\np\n\nz\n"},
        EditCase{"a_value_that_looks_like_an_option", "old", {"--content", "--json"}, "--json"},
        EditCase{"braces", "old", {"--content", "{}"}, "{}"}),
    [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace lk
