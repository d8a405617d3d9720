#include "LKCore/Tags/LKTagRewriter.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "LKCore/NoteFiles/LKContentHash.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/NoteFiles/LKNoteEdit.h"
#include "LKCore/NoteFiles/LKTaskEntries.h"
#include "Support/Child.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using test::readWhole;
using test::writeWhole;

struct RenameRow {
  const char* name;
  std::string from;
  std::string to;
  bool isPrefix;
  std::string text;
  std::string renamed;
};

class Rename : public testing::TestWithParam<RenameRow> {};

TEST_P(Rename, ChangesTheTagsOfTheRow) {
  const RenameRow& row = GetParam();
  const auto names = LKTagRewriter::renamePattern(row.from, row.to, row.isPrefix);
  EXPECT_EQ(Pattern(names.pattern).replacingAllByTemplate(row.text, names.replacement),
            row.renamed);
}

const RenameRow kRenames[] = {
    {"WholeTagsAlone", "work", "job", false, "#work #workshop #work/a #work-b #Work x#work. #work",
     "#job #workshop #work/a #work-b #Work x#job. #job"},
    {"AndWhatLiesBelow", "work", "a/b", true, "#work #work/c/d, #workshop #work/",
     "#a/b #a/b/c/d, #workshop #a/b/"},
    {"InFencesToo", "work", "job", true, "```\n#work/x\n```\n`#work`", "```\n#job/x\n```\n`#job`"},
    {"IntoItsOwnSubtree", "a", "a/b", true, "#a #a/b #ab", "#a/b #a/b/b #ab"},
    {"SignsOfPatternsAreLetters", "a.b+", "$1\\\\x", true, "#a.b+/c #aabb", "#$1\\\\x/c #aabb"},
    {"AnyScript", "\u00E9t\u00E9", "\u65E5", false, "#\u00E9t\u00E9 #\u00E9t\u00E9\u00E9",
     "#\u65E5 #\u00E9t\u00E9\u00E9"},
};

INSTANTIATE_TEST_SUITE_P(Rows, Rename, testing::ValuesIn(kRenames),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Rename, MakesThePatternThatStopsAtATagsEnd) {
  EXPECT_EQ(LKTagRewriter::renamePattern("a", "b", false),
            (LKTagRewriter::RenamePattern{R"(#a(?=[^\p{L}\p{N}\-/]|$))", "#b"}));
  EXPECT_EQ(
      LKTagRewriter::renamePattern("a", "b", true),
      (LKTagRewriter::RenamePattern{R"(#a(/[\p{L}\p{N}\-/]*)?(?=[^\p{L}\p{N}\-/]|$))", "#b$1"}));
}

TEST(Rename, CollidesWithTagsOutsideTheSubtreeAlone) {
  using Tags = std::vector<std::string>;
  const Tags tags = {"work", "job/z", "job", "work/z", "workshop", "a"};
  EXPECT_EQ(LKTagRewriter::collisions("work", "job", tags), (Tags{"job", "job/z"}));
  EXPECT_EQ(LKTagRewriter::collisions("work", "work/z", tags), Tags{});
  EXPECT_EQ(LKTagRewriter::collisions("work/z", "a", tags), Tags{"a"});
  EXPECT_TRUE(LKTagRewriter::isPrefix("work", tags));
  EXPECT_FALSE(LKTagRewriter::isPrefix("works", tags));
  EXPECT_FALSE(LKTagRewriter::isPrefix("a", tags));
}

// --- Files ---------------------------------------------------------------------------------------

bool renamed(const fs::path& file, const std::string& from, const std::string& to) {
  const LKTagIconStore icons(file.parent_path());
  return LKTagRewriter::renameInFiles({{file, ""}}, from, to, true, icons) ==
         std::vector<fs::path>{file};
}

LKFileFrontMatter gardenBlock(const std::string& body) {
  LKFileFrontMatter block;
  block.id = *UUID::parse("6F0C2A9E-41B7-4E55-9A7C-0E1B2C3D4E5F");
  block.created = {1'773'480'413, 0};
  block.title = "Garden";
  block.isFavourite = true;
  block.tagRanks = {{"beds", "m"}, {"beds/old", "r"}, {"plot/old", "s"}};
  block.userProperties = {{"hash", "mine"}, {"status", "#beds"}};
  block.taskEntries = deriveTaskEntries(body, {});
  return block;
}

TEST(RewriteFile, ChangesWhatTheWriterWouldWriteAnew) {
  const test::TempFolder folder;
  const fs::path file = folder / "Garden.md";
  const std::string body = "#beds\n- [ ] dig #beds/old due:2026-01-01\n- [ ] rest\n```\n#beds\n";
  const std::string bodyAfter =
      "#plot\n- [ ] dig #plot/old due:2026-01-01\n- [ ] rest\n```\n#plot\n";
  LKFileFrontMatter block = gardenBlock(body);
  writeWhole(file, serialize(block, body));
  ASSERT_TRUE(renamed(file, "beds", "plot"));
  const auto kept = block.taskEntries;
  // The rank that the note has for the new name already stays.
  block.tagRanks = {{"plot", "m"}, {"plot/old", "s"}};
  block.taskEntries = parseDocument(readWhole(file)).frontMatter.taskEntries;
  EXPECT_EQ(readWhole(file), serialize(block, bodyAfter));
  ASSERT_EQ(block.taskEntries.size(), 2U);
  EXPECT_NE(block.taskEntries[0].hash, kept[0].hash);
  EXPECT_EQ(block.taskEntries[0].id, kept[0].id);
  EXPECT_EQ(block.taskEntries[1], kept[1]);
  EXPECT_FALSE(renamed(file, "beds", "plot"));
}

TEST(RewriteFile, KeepsEveryOtherByte) {
  const test::TempFolder folder;
  const fs::path file = folder / "Odd.md";
  const std::string head =
      "--- \r\nlk-later: 7\r\nCREATED\r\ncreated: 2026-03-14T09:26:53Z\r\n"
      "id: 6f0c2a9e-41b7-4e55-9a7c-0e1b2c3d4e5f\r\n";
  const std::string tail = "odd :  a \r\n---\t\r\n\r\n  ";
  writeWhole(file, head + "hash: old\r\n" + tail + "#a  \r\n    x\r\r\n#ab\r");
  ASSERT_TRUE(renamed(file, "a", "b"));
  const std::string hash = computeContentHash("#b  \n\n\tx\n\n\n#ab\n");
  EXPECT_EQ(readWhole(file),
            head + "lk-hash: " + hash + "\r\n" + tail + "#b  \r\n    x\r\r\n#ab\r");
}

TEST(RewriteFile, AddsAMissingHashBehindTheLinesThatComeFirst) {
  const test::TempFolder folder;
  const fs::path file = folder / "6F0C2A9E-41B7-4E55-9A7C-0E1B2C3D4E5F.md";
  const std::string head =
      "---\nid: 6F0C2A9E-41B7-4E55-9A7C-0E1B2C3D4E5F\ncreated: 2026-03-14T09:26:53Z\n";
  writeWhole(file, head + "lk-cursor: 3\nlk-tag-rank:\n\ta: m\n   b: n\nx: y\n---\nz");
  ASSERT_TRUE(renamed(file, "a", "c"));
  EXPECT_EQ(readWhole(file),
            head + "title: Untitled\nlk-cursor: 3\nlk-hash: " + computeContentHash("z") +
                "\nlk-tag-rank:\n  b: n\n  c: m\nx: y\n---\nz");
}

TEST(RewriteFile, MakesNoRankOfAPropertyBehindTheRanks) {
  const std::string head =
      "---\nid: 6F0C2A9E-41B7-4E55-9A7C-0E1B2C3D4E5F\ncreated: 2026-03-14T09:26:53Z\n";
  // With CR LF the ranks end, so the next line is a property; in the other there are none yet.
  for (const char* lines : {"lk-tag-rank:\n  a: m\n  d: \r\n  b: o\nx: y\n", "  b: o\nx: y\n"}) {
    const std::string file = head + lines + "---\nz";
    const auto note = LKNoteEdit::read(file);
    ASSERT_TRUE(note) << lines;
    LKFileFrontMatter changed = note->frontMatter;
    changed.tagRanks = {{"c", "m"}};
    const std::string written = note->written(changed, note->rawBody);
    EXPECT_NE(written.find("lk-tag-rank:\n  c: m\n\n  b: o\nx: y\n---\nz"), std::string::npos)
        << written;
    const auto again = LKNoteEdit::read(written);
    ASSERT_TRUE(again) << written;
    EXPECT_EQ(again->frontMatter.userProperties, note->frontMatter.userProperties);
    EXPECT_EQ(again->frontMatter.tagRanks, changed.tagRanks);
  }
}

TEST(RewriteFile, LeavesAloneWhatItCannotReadOrWrite) {
  const test::TempFolder folder;
  const std::string block =
      "---\nid: 6F0C2A9E-41B7-4E55-9A7C-0E1B2C3D4E5F\ncreated: 2026-03-14T09:26:53Z\n---\n";
  for (const std::string& bytes :
       {std::string("#a without a block"), block + "#a \xFF", std::string("---\nid: 1\n---\n#a"),
        block + "#ab", std::string()}) {
    writeWhole(folder / "Note.md", bytes);
    EXPECT_FALSE(renamed(folder / "Note.md", "a", "b"));
    EXPECT_EQ(readWhole(folder / "Note.md"), bytes);
  }
  EXPECT_FALSE(renamed(folder / "Missing.md", "a", "b"));
  EXPECT_FALSE(fs::exists(folder / "Missing.md"));
  EXPECT_FALSE(renamed(folder.path(), "a", "b"));
  writeWhole(folder / "Note.md", block + "#a");
  chmod((folder / "Note.md").c_str(), 0444);
  chmod(folder.path().c_str(), 0777);
  EXPECT_EQ(test::asOrdinaryUser(
                [&] { return renamed(folder / "Note.md", "a", "b") ? "changed" : "stays"; }),
            "stays");
  EXPECT_EQ(readWhole(folder / "Note.md"), block + "#a");
}

TEST(RewriteFile, LosesNoRenamingOfAnotherProcess) {
  const test::TempFolder folder;
  const fs::path file = folder / "Shared.md";
  std::string body;
  std::string expected;
  for (int i = 0; i < 40; ++i) {
    body += "#t" + std::to_string(i) + " ";
    expected += "#u" + std::to_string(i) + " ";
  }
  writeWhole(file, serialize(gardenBlock(body), body));
  std::vector<std::unique_ptr<test::Child>> children;
  for (int child = 0; child < 4; ++child) {
    children.push_back(std::make_unique<test::Child>([&file, child] {
      for (int i = child; i < 40; i += 4) {
        const std::string number = std::to_string(i);
        if (!renamed(file, "t" + number, "u" + number)) return std::string("missed " + number);
        LKTagIconStore(file.parent_path()).setIcon("u" + number, {"leaf", std::nullopt});
      }
      return std::string("done");
    }));
  }
  for (const auto& child : children) EXPECT_EQ(child->word(), "done");
  EXPECT_EQ(parseDocument(readWhole(file)).body, expected);
  EXPECT_EQ(LKTagIconStore(folder.path()).icons().size(), 40U);
}

// --- The cache -----------------------------------------------------------------------------------

class CacheInMemory : public LKTagCache {
 public:
  std::optional<Note> note(const UUID& id) override {
    const auto found = notes.find(id);
    return found == notes.end() ? std::nullopt : std::optional(found->second);
  }
  void setNote(const UUID& id, const Note& note) override {
    notes[id] = note;
    known.insert(note.tags.begin(), note.tags.end());
  }
  std::vector<std::string> tags() override { return {known.begin(), known.end()}; }
  size_t noteCount(const std::string& tag) override {
    size_t count = 0;
    for (const auto& [id, note] : notes) count += note.tags.count(tag);
    return count;
  }
  void removeTag(const std::string& tag) override { known.erase(tag); }

  std::map<UUID, Note> notes;
  std::set<std::string> known;
};

TEST(RewriteNote, RenamesInTheCacheAndRemovesOrphansWithTheirIcons) {
  using Tags = std::vector<std::string>;
  const test::TempFolder folder;
  const LKTagIconStore icons(folder.path());
  icons.setIcon("a", {"leaf", std::nullopt});
  icons.setIcon("c", {"sun", std::nullopt});
  CacheInMemory cache;
  const UUID first = UUID::random();
  const UUID second = UUID::random();
  cache.setNote(first, {"#a/x #c", {"a/x", "c"}, {{"a", "m"}, {"z", "n"}}});
  cache.setNote(second, {"#c", {"c"}, {}});
  const auto names = LKTagRewriter::renamePattern("a", "b", true);
  const auto keys = LKTagRewriter::rankKeyTransform("a", "b");
  const Pattern pattern(names.pattern);
  EXPECT_TRUE(LKTagRewriter::rewriteNote(first, pattern, names.replacement, keys, cache));
  EXPECT_EQ(cache.notes[first],
            (LKTagCache::Note{"#b/x #c", {"b/x", "c"}, {{"b", "m"}, {"z", "n"}}}));
  EXPECT_FALSE(LKTagRewriter::rewriteNote(second, pattern, names.replacement, keys, cache));
  EXPECT_FALSE(LKTagRewriter::rewriteNote(UUID(), pattern, names.replacement, keys, cache));
  EXPECT_EQ(LKTagRewriter::syncTags(second, "#a #d", cache), Tags{"c"});
  EXPECT_EQ(LKTagRewriter::removeOrphaned({"c"}, cache, icons), Tags{});
  EXPECT_EQ(LKTagRewriter::syncTags(first, "#b/x", cache), Tags{"c"});
  EXPECT_EQ(LKTagRewriter::removeOrphanedTags(cache, icons), (Tags{"a/x", "c"}));
  EXPECT_EQ(cache.tags(), (Tags{"a", "b/x", "d"}));
  EXPECT_EQ(icons.icon("c"), std::nullopt);
  EXPECT_EQ(icons.icon("a")->symbolName, "leaf");
}

}  // namespace
}  // namespace lk
