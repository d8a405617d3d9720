#include "LKCore/NoteRepository/LKFileIndex.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKContentHash.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/NoteFiles/LKIndentation.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Tags/LKTagIconStore.h"
#include "Support/Child.h"
#include "Support/Corpus.h"
#include "Support/SlowReading.h"
#include "Support/TempFolder.h"
#include "Tools/GeneratedNotes.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

constexpr const char* kID = "6F0C2A9E-41B7-4E55-9A7C-0E1B2C3D4E5F";

void put(const test::TempFolder& folder, const std::string& path, const std::string& bytes) {
  fs::create_directories((folder / path).parent_path());
  test::writeWhole(folder / path, bytes);
}

std::string withBlock(const std::string& body, const std::string& lines = "",
                      const std::string& id = kID) {
  return "---\nid: " + id + "\ncreated: 2026-03-14T09:26:53Z\n" + lines + "---\n" + body;
}

Names titlesOf(LKContext& context) {
  Names titles;
  for (const LKNote* note : context.notes().fetch()) titles.push_back(note->title);
  return titles;
}

// --- Which files ---------------------------------------------------------------------------------

TEST(FileIndex, TakesTheNoteFilesOfACollectionInOrder) {
  const test::TempFolder folder;
  for (const char* path : {"d.MD", "a.md", ".hidden/b.md", ".trash/c.md", ".daily/2026-01-01.md",
                           ".templates/t.md", ".attachments/x.md", "notes.txt", ".md", "sub/.e.md",
                           "sub/f.mdx", "sub/G.Md", "Trip.textbundle/text.md", "y.md/z.md"}) {
    put(folder, path, "words");
  }
  mkfifo((folder / "fifo.md").c_str(), 0600);
  fs::create_symlink("a.md", folder / "link.md");
  fs::create_symlink("nowhere", folder / "dangling.md");
  fs::create_symlink("loop.md", folder / "loop.md");
  fs::create_directory_symlink(folder.path(), folder / "sub/up");
  put(folder, "bad.md", "caf\xE9");
  Names files;
  for (const fs::path& file : LKFileIndex::noteFiles(folder.path())) {
    files.push_back(file.lexically_relative(folder.path()).string());
  }
  EXPECT_EQ(files, (Names{".daily/2026-01-01.md", ".templates/t.md", ".trash/c.md", "a.md",
                          "bad.md", "d.MD", "link.md", "sub/G.Md", "y.md/z.md"}));
  const auto index = LKFileIndex::build(folder.path());
  EXPECT_EQ(titlesOf(*index), (Names{"2026-01-01", "t", "c", "a", "d", "link", "G", "z"}));
  EXPECT_EQ(LKFileIndex::build(folder / "nothing")->notes().count(), 0U);
}

TEST(FileIndex, PassesOverWhatCannotBeRead) {
  const test::TempFolder folder;
  put(folder, "a.md", "");
  put(folder, "closed.md", "");
  put(folder, "sub/b.md", "");
  fs::permissions(folder.path(), fs::perms::others_exec | fs::perms::others_read,
                  fs::perm_options::add);
  fs::permissions(folder / "closed.md", fs::perms::none);
  fs::permissions(folder / "sub", fs::perms::none);
  EXPECT_EQ(test::asOrdinaryUser([&] {
              std::string titles;
              for (const auto& title : titlesOf(*LKFileIndex::build(folder.path())))
                titles += title;
              return titles;
            }),
            "a");
}

struct DuplicateRow {
  const char* name;
  Names paths;  // of files with one id
  std::string winner;
};

class Duplicates : public testing::TestWithParam<DuplicateRow> {};

TEST_P(Duplicates, LeaveTheOneOfTheSmallestName) {
  const test::TempFolder folder;
  for (const std::string& path : GetParam().paths) {
    put(folder, path, withBlock("#tag\n- [ ] task\n[[link]]"));
  }
  const auto index = LKFileIndex::build(folder.path());
  ASSERT_EQ(index->notes().count(), 1U);
  const LKNote& note = *index->notes().fetch().front();
  EXPECT_EQ(note.fileURL->lexically_relative(folder.path()), GetParam().winner);
  EXPECT_EQ(index->tasks().count(), 1U);
  EXPECT_EQ(index->backLinks().count(), 1U);
  EXPECT_EQ(index->tags().fetch().front()->notes, std::vector<LKNote*>{index->notes().fetch()[0]});
}

const DuplicateRow kDuplicates[] = {
    {"InOneFolder", {"a.md", "b.md"}, "a.md"},
    {"TheSmallerNameIsReadLater", {"1/b.md", "2/a.md"}, "2/a.md"},
    {"OneName", {"1/a.md", "2/a.md"}, "1/a.md"},
    {"Three", {"1/c.md", "2/a.md", "3/b.md"}, "2/a.md"},
    {"ALiveOneBeforeTheTrash", {".trash/a.md", "1/.trash/b.md", "b.md", "c.md"}, "b.md"},
};

INSTANTIATE_TEST_SUITE_P(Rows, Duplicates, testing::ValuesIn(kDuplicates),
                         [](const auto& row) { return std::string(row.param.name); });

// --- What a row says -----------------------------------------------------------------------------

TEST(FileIndex, SaysWhatTheFileSays) {
  const test::TempFolder folder;
  LKTagIconStore(folder.path()).setIcon("garden", {"leaf", "green"});
  put(folder, "sub/Plan.md",
      withBlock("#garden #projects/acme\n- [ ] Sow due:2020-01-01\n```\n- [ ] fenced\n```\n"
                "- [X] Bare\n",
                "lk-daily: 2026-03-14\nlk-tasks: 1:0B54D1C6-52AE-4E0B-8B37-E27E5A4F9D10\n"
                "lk-favourite: true\nlk-archived: true\nlk-tag-rank:\n  garden: m\nmood: calm\n"));
  const Instant modified = {1'600'000'000, 5000};
  setModified(folder / "sub/Plan.md", modified);
  const auto index = LKFileIndex::build(folder.path());
  const LKNote& note = *index->notes().fetch().at(0);
  EXPECT_EQ(note.id.text(), kID);
  EXPECT_EQ(note.title, "Plan");
  EXPECT_EQ(formatISO8601(note.creationDate), "2026-03-14T09:26:53Z");
  EXPECT_EQ(note.modifiedDate, modified);
  EXPECT_EQ(note.sortModifiedDate, (Instant{modified.seconds, 0}));
  EXPECT_EQ(note.dailyDate, (Day{2026, 3, 14}));
  EXPECT_TRUE(note.isFavourite && note.isArchived() && !note.isTrashed);
  EXPECT_EQ(note.userProperties, (LKNote::Properties{{"mood", "calm"}}));
  EXPECT_EQ(note.tagRanks, (LKNote::Properties{{"garden", "m"}}));
  EXPECT_EQ(note.size, static_cast<int64_t>(note.text.size()));
  EXPECT_EQ(note.contentHash, computeContentHash(note.text));
  EXPECT_EQ(note.fileDigest, computeRawDigest(test::readWhole(folder / "sub/Plan.md")));
  EXPECT_EQ(note.activeTaskCount + 10 * note.doneTaskCount + 100 * note.overdueTaskCount, 111);
  ASSERT_EQ(note.tags.size(), 2U);
  EXPECT_EQ(note.tags[0]->symbolName, "leaf");
  ASSERT_EQ(note.tasks.size(), 2U);
  EXPECT_EQ(note.tasks[0]->id.text(), "0B54D1C6-52AE-4E0B-8B37-E27E5A4F9D10");
  EXPECT_EQ(note.tasks[0]->project, "acme");
  EXPECT_EQ(note.tasks[1]->text, "Bare");
  EXPECT_EQ(note.tasks[1]->paragraphIndex, 5);
  EXPECT_NE(note.tasks[1]->id, UUID());
}

TEST(FileIndex, GivesAPlainFileAFreshIdentityInEachRun) {
  const test::TempFolder folder;
  put(folder, "Plain.md", "    indented");
  put(folder, std::string(kID) + ".md", withBlock("", "status: Archived\n"));
  const auto first = LKFileIndex::build(folder.path());
  const auto second = LKFileIndex::build(folder.path());
  EXPECT_EQ(titlesOf(*first), (Names{"Untitled", "Plain"}));
  EXPECT_TRUE(first->notes().fetch()[0]->isArchived());
  EXPECT_EQ(first->notes().fetch()[1]->text, "\tindented");
  EXPECT_NE(first->notes().fetch()[1]->id, second->notes().fetch()[1]->id);
}

TEST(FileIndex, LinksNotesByTheirTitles) {
  const test::TempFolder folder;
  put(folder, "Source.md",
      "[[plan]] [[plan]]\n[[caf\u00E9]]\n[[Gone]] [[20260314]]\n[[Only trashed]]");
  put(folder, ".trash/Plan.md", "");
  put(folder, "1/Plan.md", "");
  put(folder, "Cafe\u0301.md", "");
  put(folder, ".daily/20260314.md", "");
  put(folder, ".trash/only trashed.md", "");
  const auto index = LKFileIndex::build(folder.path(), LKParts::links);
  std::map<UUID, std::string> paths;
  for (const LKNote* note : index->notes().fetch()) {
    paths[note->id] = note->fileURL->lexically_relative(folder.path()).string();
  }
  std::map<std::string, std::string> links;
  for (const LKBackLink* link : index->backLinks().fetch()) {
    links[link->targetNoteReference] = std::to_string(link->sourceParagraphIndex) + " " +
                                       (link->targetNoteID ? paths[*link->targetNoteID] : "-");
  }
  EXPECT_EQ(links,
            (std::map<std::string, std::string>{{"plan", "0 1/Plan.md"},
                                                {"caf\u00E9", "1 Cafe\u0301.md"},
                                                {"Gone", "2 -"},
                                                {"20260314", "2 .daily/20260314.md"},
                                                {"Only trashed", "3 .trash/only trashed.md"}}));
}

// --- Parts ---------------------------------------------------------------------------------------

// What a note has of one part; the ids that are made up in each run are left out.
std::string partOf(const LKNote& note, LKParts part) {
  std::string said = note.title + ":";
  if (part == LKParts::text) said += note.text;
  if (part == LKParts::words) said += std::to_string(note.lineCount);
  if (part == LKParts::hashes) said += note.contentHash + note.fileDigest.value_or("-");
  if (part == LKParts::tags) {
    for (const LKTag* tag : note.tags) said += " " + tag->text;
    said += std::to_string(note.activeTaskCount) + std::to_string(note.doneTaskCount) +
            std::to_string(note.overdueTaskCount) + std::to_string(note.imageAttachments.size());
  }
  if (part == LKParts::tasks) {
    for (const LKTask* task : note.tasks) {
      said += " " + task->id.text() + task->text + task->project.value_or("-");
    }
  }
  if (part == LKParts::links) {
    for (const LKBackLink* link : note.backLinks) {
      said += " " + link->targetNoteReference + "@" + link->sourceParagraph +
              (link->targetNoteID ? link->targetNoteID->text() : "-");
    }
  }
  return said;
}

TEST(FileIndex, WorksOutEachPartAloneAsWithAllOthers) {
  const test::TempFolder folder(test::memoryFolder());
  test::writeGeneratedNotes(folder.path(), 200, 7);
  const auto all = LKFileIndex::build(folder.path());
  const auto allNotes = all->notes().fetch();
  ASSERT_EQ(allNotes.size(), 200U);
  EXPECT_EQ(all->tasks().count(), 600U);
  const LKParts parts[] = {LKParts::text,  LKParts::tags,  LKParts::tasks,
                           LKParts::links, LKParts::words, LKParts::hashes};
  for (const LKParts asked : parts) {
    const auto index = LKFileIndex::build(folder.path(), asked);
    const auto notes = index->notes().fetch();
    ASSERT_EQ(notes.size(), allNotes.size());
    for (size_t i = 0; i < notes.size(); ++i) {
      for (const LKParts part : parts) {
        LKNote untouched;
        untouched.title = notes[i]->title;
        EXPECT_EQ(partOf(*notes[i], part), partOf(part == asked ? *allNotes[i] : untouched, part));
      }
      EXPECT_EQ(notes[i]->size, allNotes[i]->size);
    }
  }
}

TEST(FileIndex, GivesTaskLinesWithoutIDs) {
  const test::TempFolder folder(test::memoryFolder());
  test::writeGeneratedNotes(folder.path(), 3, 7);
  const auto all = LKFileIndex::build(folder.path());
  const auto lines = LKFileIndex::build(folder.path(), LKParts::taskLines);
  const auto whole = all->tasks().fetch();
  const auto rows = lines->tasks().fetch({.parts = LKParts::taskLines});
  ASSERT_EQ(rows.size(), 9U);
  for (size_t i = 0; i < rows.size(); ++i) {
    EXPECT_EQ(rows[i]->text, whole[i]->text);
    EXPECT_EQ(rows[i]->dateDue, whole[i]->dateDue);
    EXPECT_EQ(rows[i]->note->title, whole[i]->note->title);
    EXPECT_EQ(rows[i]->id, UUID());
    EXPECT_NE(whole[i]->id, UUID());
  }
}

TEST(GeneratedNotes, AreTheSameForTheSameSeed) {
  const std::string bytes = test::generatedNote(5, 9, 3).bytes;
  EXPECT_EQ(bytes, test::generatedNote(5, 9, 3).bytes);
  EXPECT_NE(bytes, test::generatedNote(5, 9, 4).bytes);
}

// --- Real notes ----------------------------------------------------------------------------------

TEST(FileIndex, AgreesWithASlowCountOfTheCorpus) {
  if (test::corpus().empty()) GTEST_SKIP() << test::kNoCorpus;
  const fs::path folder = test::corpus();
  std::map<std::string, test::SlowReading> slow;  // by path
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    const std::string path = entry.path().lexically_relative(folder).string();
    const bool isHidden = path.starts_with('.') || path.find("/.") != std::string::npos;
    if (isHidden || entry.path().extension() != ".md") continue;
    const std::string text = test::readWhole(entry.path());
    if (text::isValidUTF8(text)) slow[path] = test::slowReading(spacesToTabs(text));
  }
  const auto index = LKFileIndex::build(folder);
  size_t links = 0;
  for (const LKNote* note : index->notes().fetch()) {
    const std::string path = note->fileURL->lexically_relative(folder).string();
    ASSERT_TRUE(slow.contains(path)) << path;
    std::set<std::string> references;
    for (const LKBackLink* link : note->backLinks) references.insert(link->targetNoteReference);
    EXPECT_EQ(references, slow[path].backlinks) << path;
    EXPECT_EQ(note->tasks.size(), slow[path].tasks.size()) << path;
    for (const LKTag* tag : note->tags) {
      EXPECT_NE(note->text.find("#" + tag->text), std::string::npos) << path << " " << tag->text;
    }
    links += references.size();
  }
  EXPECT_EQ(index->notes().count(), slow.size());
  EXPECT_EQ(index->backLinks().count(), links);
  EXPECT_GT(links, 100U);
}

}  // namespace
}  // namespace lk
