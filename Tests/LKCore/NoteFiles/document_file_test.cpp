#include "LKCore/NoteFiles/LKDocumentFile.h"

#include <gtest/gtest.h>

#include <asio/awaitable.hpp>
#include <asio/co_spawn.hpp>
#include <asio/io_context.hpp>
#include <asio/use_future.hpp>
#include <functional>

#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKFileDates.h"
#include "LKCore/NoteFiles/LKSyncError.h"
#include "Support/Corpus.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using test::readWhole;
using test::TempFolder;
using test::writeWhole;

LKDocumentFile newNote(std::string text) {
  LKDocumentFile note;
  note.id = UUID::random();
  note.title = "Plan";
  note.text = std::move(text);
  note.createdDate = parseISO8601("2026-01-02T03:04:05Z");
  return note;
}

LKSyncError::Case failureOf(const std::function<void()>& work) {
  try {
    work();
  } catch (const LKSyncError& error) {
    EXPECT_FALSE(error.recoverySuggestion().empty());
    return error.errorCase();
  }
  ADD_FAILURE() << "nothing was thrown";
  return LKSyncError::Case::containerNotFound;
}

TEST(DocumentFile, ComesBackAsItWasWritten) {
  const TempFolder folder;
  const fs::path url = folder / "a" / "b" / "Plan.md";
  LKDocumentFile note = newNote("- [ ] Rake\ntext");
  note.userProperties = {{"mood", "calm"}};
  note.write(url);
  const LKDocumentFile read = LKDocumentFile::parse(url);
  EXPECT_EQ(read.title, "Plan");
  EXPECT_EQ(read.text, note.text);
  EXPECT_EQ(read.createdDate, note.createdDate);
  EXPECT_EQ(read.userProperties, note.userProperties);
  EXPECT_EQ(read.taskEntries.size(), 1U);
  EXPECT_EQ(read.fileSize, readWhole(url).size());
  EXPECT_EQ(std::optional(read.modifiedDate), lkContentModificationDate(url));
  read.write(url);
  EXPECT_EQ(LKDocumentFile::parse(url).taskEntries, read.taskEntries);
  EXPECT_EQ(LKDocumentFile::parse(url).text, read.text);
}

TEST(DocumentFile, TakesTheCreationDateOfTheFileThatIsThere) {
  const TempFolder folder;
  const fs::path url = folder / "Plan.md";
  LKDocumentFile note = newNote("one");
  note.write(url);
  const Instant old = *parseISO8601("2026-02-02T00:00:00Z");
  lkSetContentModificationDate(url, old);
  note.createdDate = Instant::now();
  note.text = "two";
  note.write(url, true);
  EXPECT_EQ(LKDocumentFile::parse(url).createdDate, parseISO8601("2026-01-02T03:04:05Z"));
  EXPECT_EQ(LKDocumentFile::parse(url).modifiedDate, old);
  EXPECT_EQ(LKDocumentFile::parse(url).text, "two");
  writeWhole(url, "no block");
  note.write(url);
  EXPECT_EQ(LKDocumentFile::parse(url).createdDate->seconds, note.createdDate->seconds);
}

TEST(DocumentFile, SaysWhatWentWrongAndLeavesTheFile) {
  const TempFolder folder;
  const fs::path url = folder / "Plan.md";
  using Case = LKSyncError::Case;
  EXPECT_EQ(failureOf([&] { LKDocumentFile::parse(url); }), Case::readFailed);
  newNote("kept").write(url);
  const std::string before = readWhole(url);
  EXPECT_EQ(failureOf([&] { newNote("\xFF").write(url); }), Case::writeFailed);
  EXPECT_EQ(failureOf([&] { newNote("a").write(url / "Under.md"); }), Case::writeFailed);
  EXPECT_EQ(readWhole(url), before);
  for (const std::string& bytes : {std::string("no block"), before + "\xFF"}) {
    writeWhole(url, bytes);
    EXPECT_EQ(failureOf([&] { LKDocumentFile::parse(url); }), Case::invalidFrontMatter);
  }
  try {
    LKDocumentFile::parse(folder / "None.md");
  } catch (const LKSyncError& error) {
    EXPECT_EQ(error.description(), "Failed to read None.md: No such file or directory");
    EXPECT_EQ(error.code(), ENOENT);
    EXPECT_EQ(error.url(), folder / "None.md");
    EXPECT_EQ(error.recoverySuggestion(), "Try signing out and back into iCloud Drive.");
  }
}

TEST(DocumentFile, IsReadAndWrittenWhileTheCallersThreadGoesOn) {
  const TempFolder folder;
  const fs::path url = folder / "Plan.md";
  asio::io_context context;
  const auto work = [&]() -> asio::awaitable<std::string> {
    co_await LKDocumentFile::writeAsync(newNote("text"), url);
    const LKDocumentFile read = co_await LKDocumentFile::parseAsync(url);
    EXPECT_TRUE(context.get_executor().running_in_this_thread());
    try {
      co_await LKDocumentFile::parseAsync(folder / "None.md");
    } catch (const LKSyncError& error) {
      co_return read.text + ", " + error.description();
    }
    co_return "no error";
  };
  auto result = asio::co_spawn(context, work, asio::use_future);
  context.run();
  EXPECT_EQ(result.get(), "text, Failed to read None.md: No such file or directory");
}

TEST(DocumentFile, KeepsTheWordsOfEveryNoteOfARealCollection) {
  if (test::corpus().empty()) GTEST_SKIP() << test::kNoCorpus;
  const TempFolder folder;
  const auto words = [](std::string_view text) {
    std::string result;
    for (const std::string_view line : text::splitLines(text)) {
      result.append(text::trimmedSpacesTabs(line)).append("\n");
    }
    return std::string(text::trimmed(result));
  };
  test::forEachNote([&](const fs::path& file, const std::string& text) {
    newNote(text).write(folder / "Plan.md");
    const LKDocumentFile read = LKDocumentFile::parse(folder / "Plan.md");
    EXPECT_EQ(words(read.text), words(text)) << file;
    fs::remove(folder / "Plan.md");
  });
}

}  // namespace
}  // namespace lk
