// `lk tags rename`: what it changes, what it refuses, and what a failure leaves.

#include "ReadingFixture.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using test::ProcessResult;
using test::readWhole;

class TagRenaming : public test::Reading {
 protected:
  TagRenaming() {
    note("A", "one #work two #work/site\n\n```\n#work\n```\n- [ ] Task #work", 1,
         [](LKFileFrontMatter& block) {
           block.tagRanks = {{"work", "a0"}};
         });
    note("Deep/B", "#workshop #home #work/site", 2);
    note(".daily/20260310", "#work", 3);
    note(".trash/T", "#work", 4);
  }

  std::map<std::string, std::string> contents() const {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(notes())) {
      if (entry.is_regular_file())
        files[entry.path().lexically_relative(notes())] = readWhole(entry);
    }
    return files;
  }

  static std::string bodyOf(const std::string& file) { return parseDocument(file).body; }
};

TEST_F(TagRenaming, ChangesTheTagAndThoseBelowAndNothingElse) {
  const auto before = contents();
  const ProcessResult result = lk("tags|rename|#work| office/all ");
  EXPECT_EQ(result.out, "Renamed #work → #office/all in 3 notes.\n");
  EXPECT_EQ(result.status, 0) << result.err;
  const auto after = contents();
  ASSERT_EQ(after.size(), before.size());
  EXPECT_EQ(
      bodyOf(after.at("A.md")),
      "one #office/all two #office/all/site\n\n```\n#office/all\n```\n- [ ] Task #office/all");
  EXPECT_EQ(bodyOf(after.at("Deep/B.md")), "#workshop #home #office/all/site");
  EXPECT_EQ(bodyOf(after.at(".daily/20260310.md")), "#office/all");
  EXPECT_EQ(after.at(".trash/T.md"), before.at(".trash/T.md"));
  const LKFileFrontMatter block = parseDocument(after.at("A.md")).frontMatter;
  EXPECT_EQ(block.id, parseDocument(before.at("A.md")).frontMatter.id);
  EXPECT_EQ(block.tagRanks, (std::map<std::string, std::string>{{"office/all", "a0"}}));
  EXPECT_EQ(block.taskEntries.at(0).id,
            parseDocument(before.at("A.md")).frontMatter.taskEntries.at(0).id);
  EXPECT_EQ(
      lk("tags|list|--quiet").out,
      "#home (1 notes)\n#office/all (2 notes)\n#office/all/site (2 notes)\n#workshop (1 notes)\n");
}

TEST_F(TagRenaming, RefusesInTheseWordsAndChangesNothing) {
  const auto before = contents();
  const struct {
    const char* name;
    std::string line;  // words separated by "|"
    const char* words;
  } cases[] = {
      {"a bad name", "work|two words", "Error: New tag name: "},
      {"the same name", "#work|work", "Error: The new name is the same as the old one.\n"},
      {"an unused tag", "nothing|other", "Error: No note uses #nothing.\n"},
      {"a tag of the trash's case", "Work|other", "Error: No note uses #Work.\n"},
      {"a taken name", "work|home",
       "Error: #home already exists — renaming would merge #work into it. Re-run with --merge to "
       "do that.\n"},
  };
  for (const auto& each : cases) {
    const ProcessResult result = lk("tags|rename|" + each.line);
    EXPECT_EQ(result.status, 1) << each.name;
    EXPECT_TRUE(result.err.starts_with(each.words)) << each.name << ": " << result.err;
    EXPECT_EQ(result.out, "") << each.name;
  }
  ASSERT_EQ(sandbox.lk({"collection", "add", "Notes", "--mode", "readOnly"}).status, 0);
  const ProcessResult readOnly = lk("tags|rename|work|office");
  EXPECT_EQ(readOnly.err, "Error: This collection is read-only. Notes cannot be modified.\n");
  EXPECT_EQ(contents(), before);
}

TEST_F(TagRenaming, TakesATagInEitherUnicodeFormAndNoOther) {
  note("Composed", "#caf\u00E9 #caf\u00E9/menu", 5);
  note("Decomposed", "#cafe\u0301/menu", 6, [](LKFileFrontMatter& block) {
    block.tagRanks = {{"cafe\u0301/menu", "a0"}};
  });
  note("Bare", "#cafe #cafe\u0301/menu", 7);
  EXPECT_EQ(lk("tags|rename|cafe|bar").out, "Renamed #cafe → #bar in 1 note.\n");
  EXPECT_EQ(lk("tags|rename|home|caf\u00E9/menu").status, 1);  // taken, in both forms
  EXPECT_EQ(lk("tags|rename|cafe\u0301|inn").out, "Renamed #cafe\u0301 → #inn in 3 notes.\n");
  EXPECT_EQ(bodyOf(readWhole(file("Composed"))), "#inn #inn/menu");
  EXPECT_EQ(bodyOf(readWhole(file("Bare"))), "#bar #inn/menu");
  const LKParsedDocument decomposed = parseDocument(readWhole(file("Decomposed")));
  EXPECT_EQ(decomposed.body, "#inn/menu");
  EXPECT_EQ(decomposed.frontMatter.tagRanks,
            (std::map<std::string, std::string>{{"inn/menu", "a0"}}));
}

TEST_F(TagRenaming, MergesWhenAskedTo) {
  const ProcessResult result = lk("tags|rename|workshop|home|--merge|--json");
  EXPECT_EQ(result.out, "{\n  \"message\" : \"Merged #workshop → #home in 1 note.\"\n}\n");
  EXPECT_EQ(bodyOf(readWhole(file("Deep/B"))), "#home #home #work/site");
}

TEST_F(TagRenaming, TellsOfFilesThatAreNoNotes) {
  test::writeWhole(file("Plain"), "#work #only-here\n");
  test::writeWhole(file("Odd"), "\xFF #work\n");
  const std::string left = "Note: " + file("Plain").string() +
                           " stays as it is: no front matter of a note that can be read.\n" +
                           "Note: " + file("Odd").string() + " stays as it is: no UTF-8 text.\n";
  const ProcessResult unused = lk("tags|rename|only-here|there");
  EXPECT_EQ(unused.err, left + "Error: No note uses #only-here.\n");
  const ProcessResult result = lk("tags|rename|work|office");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "Renamed #work → #office in 3 notes.\n");
  EXPECT_EQ(result.err, left);
  EXPECT_EQ(readWhole(file("Plain")), "#work #only-here\n");
}

TEST_F(TagRenaming, TellsWhichFilesFailedAndFinishesTheRestLater) {
  for (fs::path path = notes(); path != sandbox.home().parent_path(); path = path.parent_path()) {
    if (fs::status(path).permissions() == fs::perms::owner_all) {
      fs::permissions(path, fs::perms{0755});
    }
  }
  for (const char* folder : {"", ".daily", ".trash"})
    fs::permissions(notes() / folder, fs::perms{0777});
  for (const char* name : {"A", "Deep/B", ".daily/20260310"})
    fs::permissions(file(name), fs::perms{0666});
  fs::permissions(notes() / "Deep", fs::perms{0555});
  const auto asNobody = [&](const std::vector<std::string>& more) {
    std::vector<std::string> words = {"tags",   "rename",       "work",
                                      "office", "--collection", notes().string()};
    words.insert(words.end(), more.begin(), more.end());
    return sandbox.lkAsOrdinaryUser(words);
  };
  const ProcessResult first = asNobody({});
  EXPECT_EQ(first.status, 4);
  EXPECT_EQ(first.out, "Renamed #work → #office in 2 notes.\n");
  EXPECT_TRUE(first.err.starts_with("Error: File write failed — 1 note keeps #work:\n  " +
                                    file("Deep/B").string() + ": "))
      << first.err;
  EXPECT_TRUE(
      first.err.ends_with(": Permission denied\n  Re-run with --merge to rename the rest.\n"))
      << first.err;
  EXPECT_EQ(bodyOf(readWhole(file("Deep/B"))), "#workshop #home #work/site");
  fs::permissions(notes() / "Deep", fs::perms{0777});
  EXPECT_EQ(asNobody({}).status, 1);
  EXPECT_EQ(asNobody({"--merge"}).out, "Merged #work → #office in 1 note.\n");
  EXPECT_EQ(bodyOf(readWhole(file("Deep/B"))), "#workshop #home #office/site");
}

}  // namespace
}  // namespace lk
