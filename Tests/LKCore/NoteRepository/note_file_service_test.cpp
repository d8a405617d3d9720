#include "LKCore/NoteRepository/LKNoteFileService.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/DailyNotes/LKDailyNoteService.h"
#include "LKCore/NoteFiles/LKNoteFilename.h"
#include "LKCore/NoteFiles/LKSyncError.h"
#include "LKCore/Platform/Files.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using test::readWhole;
using test::writeWhole;

LKParsedDocument documentAt(const fs::path& file) {
  return parseDocument(readWhole(file));
}

fs::path makeNote(const test::TempFolder& folder, const std::string& title,
                  const std::string& body) {
  NewNote note;
  note.title = title;
  note.body = body;
  return LKNoteFileService::createNote(note, folder.path());
}

NoteChange appending(const std::string& text) {
  NoteChange change;
  change.bodyTransform = [text](const std::string& body) { return body + text; };
  return change;
}

struct IndentationCase {
  std::string name;
  std::string text;
  std::string normalised;
};

class Indentation : public testing::TestWithParam<IndentationCase> {};

TEST_P(Indentation, IsNormalisedOnceAndForAll) {
  const std::string once = LKNoteFileService::normaliseIndentation(GetParam().text);
  EXPECT_EQ(once, GetParam().normalised);
  EXPECT_EQ(LKNoteFileService::normaliseIndentation(once), once);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, Indentation,
    testing::Values(IndentationCase{"empty", "", ""}, IndentationCase{"three_stay", "   a", "   a"},
                    IndentationCase{"four", "    a", "\ta"},
                    IndentationCase{"six", "    a\n      b", "\ta\n\t  b"},
                    IndentationCase{"blank_line_of_spaces", "        \nx", "\t\t\nx"},
                    IndentationCase{"after_a_tab", "\t    a", "\t    a"},
                    IndentationCase{"crlf", "a\r\n    b\r\n", "a\n\tb\n"},
                    IndentationCase{"lone_cr", "a\rb\r\r\n", "a\nb\n\n"},
                    IndentationCase{"in_a_fence_too", "```\n    x\n```", "```\n\tx\n```"}),
    [](const auto& row) { return row.param.name; });

TEST(CreateNote, WritesABlockThatIsTrueToTheBody) {
  const test::TempFolder folder;
  NewNote note;
  note.title = "Plan";
  note.body = "- [ ] one\r\nwords";
  note.userProperties = {{"status", "Draft"}};
  note.isFavourite = true;
  note.noteID = UUID::random();
  const fs::path file = LKNoteFileService::createNote(note, folder.path());
  EXPECT_EQ(file.filename(), "Plan.md");
  const LKParsedDocument document = documentAt(file);
  EXPECT_EQ(document.body, "- [ ] one\nwords");
  EXPECT_EQ(document.frontMatter.id, *note.noteID);
  EXPECT_EQ(document.frontMatter.title, "Plan");
  EXPECT_TRUE(document.frontMatter.isFavourite);
  EXPECT_EQ(document.frontMatter.userProperties, note.userProperties);
  ASSERT_EQ(document.frontMatter.taskEntries.size(), 1U);
  EXPECT_EQ(document.frontMatter.taskEntries[0].paragraphIndex, 0);
}

TEST(CreateNote, NumbersATakenTitleAndReplacesNothing) {
  const test::TempFolder folder;
  writeWhole(folder / "Notes.md", "mine");
  fs::create_symlink("nowhere", folder / "Notes 2.md");
  EXPECT_EQ(makeNote(folder, "Notes", "a").filename(), "Notes 3.md");
  EXPECT_EQ(readWhole(folder / "Notes.md"), "mine");
  EXPECT_EQ(documentAt(folder / "Notes 3.md").frontMatter.title, "Notes 3");
}

TEST(CreateNote, GivesEveryRacerAFileOfItsOwn) {
  const test::TempFolder folder;
  constexpr int kProcesses = 4;
  constexpr int kNotes = 25;
  std::vector<pid_t> children;
  for (int process = 0; process < kProcesses; ++process) {
    const pid_t child = fork();
    if (child == 0) {
      for (int i = 0; i < kNotes; ++i) makeNote(folder, "Same", std::to_string(process));
      _exit(0);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
  }
  std::vector<int> notesOf(kProcesses);
  for (const auto& entry : fs::directory_iterator(folder.path())) {
    ++notesOf.at(std::stoul(documentAt(entry.path()).body));
  }
  EXPECT_EQ(notesOf, std::vector<int>(kProcesses, kNotes));
}

TEST(CreateNote, NamesUntitledAndDailyNotesByThemselves) {
  const test::TempFolder folder;
  NewNote untitled;
  untitled.untitled = true;
  untitled.noteID = UUID::random();
  const fs::path file = LKNoteFileService::createNote(untitled, folder.path());
  EXPECT_EQ(file.filename(), untitled.noteID->text() + ".md");
  EXPECT_EQ(LKNoteFilename::displayName(file), "Untitled");
  EXPECT_FALSE(documentAt(file).frontMatter.title.has_value());

  const Day day{2026, 3, 14};
  const fs::path daily = LKDailyNoteService::createIfNeeded(day, folder.path(), "first");
  EXPECT_EQ(daily, folder.path() / ".daily/20260314.md");
  EXPECT_EQ(LKDailyNoteService::createIfNeeded(day, folder.path(), "second"), daily);
  EXPECT_EQ(documentAt(daily).body, "first");
  EXPECT_EQ(documentAt(daily).frontMatter.dailyDate, day);
}

TEST(UpdateNote, KeepsWhatItWasNotAskedToChange) {
  const test::TempFolder folder;
  const fs::path file = makeNote(folder, "Plan", "- [ ] one\n- [ ] two");
  const LKFileFrontMatter before = documentAt(file).frontMatter;
  NoteChange change = appending("\n- [ ] three");
  change.propertyUpdates = {{"status", "Draft"}, {"absent", std::nullopt}};
  LKNoteFileService::updateNote(file, change);
  const LKParsedDocument after = documentAt(file);
  EXPECT_EQ(after.body, "- [ ] one\n- [ ] two\n- [ ] three");
  EXPECT_EQ(after.frontMatter.id, before.id);
  EXPECT_EQ(after.frontMatter.created, before.created);
  EXPECT_EQ(after.frontMatter.userProperties.at("status"), "Draft");
  ASSERT_EQ(after.frontMatter.taskEntries.size(), 3U);
  EXPECT_EQ(after.frontMatter.taskEntries[0], before.taskEntries[0]);
  EXPECT_EQ(after.frontMatter.taskEntries[1], before.taskEntries[1]);
}

TEST(UpdateNote, EndsTheArchiveStateWithThePropertyThatSaidSo) {
  const test::TempFolder folder;
  const fs::path file = makeNote(folder, "Plan", "words");
  for (const std::optional<std::string>& next : {std::optional<std::string>("Draft"), {}}) {
    NoteChange change;
    change.propertyUpdates["status"] = "archived";
    LKNoteFileService::updateNote(file, change);
    LKNoteFileService::updateNote(file, appending("!"));
    EXPECT_TRUE(documentAt(file).frontMatter.isArchived);
    change.propertyUpdates["status"] = next;
    LKNoteFileService::updateNote(file, change);
    EXPECT_FALSE(documentAt(file).frontMatter.isArchived);
  }
}

TEST(UpdateNote, RefusesAFileWithoutABlockAndLeavesIt) {
  const test::TempFolder folder;
  for (const std::string& text : {std::string("plain"), std::string("---\nid: x\n---\nbody"),
                                  std::string("---\nbad \xFF bytes\n---\n"), std::string()}) {
    writeWhole(folder / "Plain.md", text);
    try {
      LKNoteFileService::updateNote(folder / "Plain.md", appending("x"));
      ADD_FAILURE() << "updated " << text;
    } catch (const LKSyncError& error) {
      EXPECT_EQ(error.description(), "Invalid front matter in Plain.md. File may be corrupted.");
    }
    EXPECT_EQ(readWhole(folder / "Plain.md"), text);
  }
  EXPECT_THROW(LKNoteFileService::updateNote(folder / "Gone.md", appending("x")), FileError);
}

TEST(UpdateNote, ChangesNothingWhenTheTransformThrows) {
  const test::TempFolder folder;
  const fs::path file = makeNote(folder, "Plan", "words");
  const std::string before = readWhole(file);
  NoteChange change;
  change.bodyTransform = [](const std::string&) -> std::string { throw Error("no"); };
  EXPECT_THROW(LKNoteFileService::updateNote(file, change), Error);
  EXPECT_EQ(readWhole(file), before);
}

TEST(UpdateNote, LosesNoChangeOfConcurrentWriters) {
  const test::TempFolder folder;
  const fs::path file = makeNote(folder, "Log", "");
  constexpr int kWriters = 4;
  constexpr int kLines = 50;
  std::vector<std::thread> writers;
  for (int writer = 0; writer < kWriters; ++writer) {
    writers.emplace_back([&file] {
      for (int i = 0; i < kLines; ++i) LKNoteFileService::updateNote(file, appending("line\n"));
    });
  }
  for (std::thread& writer : writers) writer.join();
  EXPECT_EQ(text::split(documentAt(file).body, '\n').size(), size_t{kWriters * kLines + 1});
}

// Puts the text in the file's place at the first call, as a sync program does, or removes the file.
NoteChange disturbed(const fs::path& file, const std::optional<std::string>& theirs) {
  NoteChange change;
  change.bodyTransform = [file, theirs, isFirst = true](const std::string& body) mutable {
    if (std::exchange(isFirst, false)) {
      fs::remove(file);
      if (theirs) writeWhole(file, *theirs);
    }
    return body + "mine\n";
  };
  return change;
}

TEST(UpdateNote, IsMadeToWhatSomebodyWithoutALockWroteMeanwhile) {
  const test::TempFolder folder;
  const fs::path file = makeNote(folder, "Plan", "old\n");
  LKNoteFileService::updateNote(file, disturbed(file, readWhole(file) + "theirs\n"));
  EXPECT_EQ(documentAt(file).body, "old\ntheirs\nmine\n");
}

TEST(UpdateNote, DoesNotBringBackANoteThatWasRemovedMeanwhile) {
  const test::TempFolder folder;
  const fs::path file = makeNote(folder, "Plan", "old\n");
  EXPECT_THROW(LKNoteFileService::updateNote(file, disturbed(file, std::nullopt)), FileError);
  EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST(SetFrontMatter, KeepsTheBodyAndTheTimeWhenAsked) {
  const test::TempFolder folder;
  const fs::path file = makeNote(folder, "Plan", "words");
  const Instant longAgo{1'000'000'000, 0};
  setModified(file, longAgo);
  LKNoteFileService::setTagRank(file, "garden/beds", "a0",
                                LKNoteFileService::ModificationTime::preserved);
  EXPECT_EQ(fileInfo(file)->modified, longAgo);
  EXPECT_EQ(documentAt(file).frontMatter.tagRanks.at("garden/beds"), "a0");
  LKNoteFileService::lockName(file);
  EXPECT_NE(fileInfo(file)->modified, longAgo);
  EXPECT_TRUE(documentAt(file).frontMatter.nameLocked);
  LKNoteFileService::setTagRank(file, "garden/beds", std::nullopt,
                                LKNoteFileService::ModificationTime::changes);
  EXPECT_TRUE(documentAt(file).frontMatter.tagRanks.empty());
  EXPECT_EQ(documentAt(file).body, "words");
}

TEST(MoveNote, NeverReplacesAFile) {
  const test::TempFolder folder;
  const fs::path one = makeNote(folder, "One", "1");
  const fs::path two = makeNote(folder, "Two", "2");
  EXPECT_THROW(LKNoteFileService::moveNote(one, two), FileError);
  EXPECT_EQ(documentAt(one).body, "1");
  EXPECT_EQ(documentAt(two).body, "2");
  LKNoteFileService::moveNote(one, folder / "one.md");
  EXPECT_EQ(documentAt(folder / "one.md").body, "1");
  LKNoteFileService::deleteNotePermanently(two);
  EXPECT_FALSE(fs::exists(two));
}

TEST(DeleteNote, WaitsForAChangeThatIsUnderWay) {
  const test::TempFolder folder;
  const fs::path file = makeNote(folder, "Plan", "words");
  std::thread deleting;
  NoteChange change;
  change.bodyTransform = [&](const std::string& body) {
    deleting = std::thread([&] { LKNoteFileService::deleteNotePermanently(file); });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_TRUE(fs::exists(file));
    return body + "!";
  };
  LKNoteFileService::updateNote(file, change);
  deleting.join();
  EXPECT_FALSE(fs::exists(file));
}

TEST(BringBack, RemovesOnlyTheArchiveState) {
  LKFileFrontMatter block;
  block.isArchived = true;
  block.userProperties = {{"status", "Archived"}};
  LKNoteFileService::bringBack(block);
  EXPECT_FALSE(block.isArchived);
  EXPECT_TRUE(block.userProperties.empty());
  block.userProperties = {{"status", "Draft"}};
  LKNoteFileService::bringBack(block);
  EXPECT_EQ(block.userProperties.at("status"), "Draft");
}

}  // namespace
}  // namespace lk
