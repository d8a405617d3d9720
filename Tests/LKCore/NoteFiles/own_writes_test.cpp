#include <gtest/gtest.h>

#include <asio/awaitable.hpp>
#include <asio/co_spawn.hpp>
#include <asio/thread_pool.hpp>
#include <asio/use_future.hpp>
#include <cerrno>
#include <chrono>
#include <future>
#include <string>
#include <system_error>

#include "LKCore/NoteFiles/LKContentHash.h"
#include "LKCore/NoteFiles/LKFileAvailability.h"
#include "LKCore/NoteFiles/LKFileDates.h"
#include "LKCore/NoteFiles/LKFileWrite.h"
#include "LKCore/NoteFiles/LKNoteWriteReport.h"
#include "LKCore/NoteFiles/LKOwnFileContent.h"
#include "LKCore/NoteFiles/LKOwnFileWrites.h"
#include "LKCore/Platform/Executor.h"
#include "LKCore/Platform/Files.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using test::TempFolder;
using test::writeWhole;

// The table of own writes, on a clock that the test moves.
class OwnContent : public testing::Test {
 protected:
  OwnContent() {
    LKOwnFileContent::reset([this] { return now_; });
  }
  ~OwnContent() override { LKOwnFileContent::reset(); }

  void pass(int64_t seconds) { now_.seconds += seconds; }
  bool wrote(const std::string& text, const fs::path& url) const {
    return LKOwnFileContent::wrote(computeRawDigest(text), url);
  }

  const TempFolder folder_;

 private:
  Instant now_{.seconds = 1'000'000, .nanoseconds = 500};
};

TEST_F(OwnContent, KnowsAWriteForTenMinutes) {
  const fs::path file = folder_ / "Plan.md";
  LKOwnFileContent::record("text", file);
  LKOwnFileContent::record("later text", file);
  EXPECT_TRUE(wrote("text", file));
  EXPECT_TRUE(wrote("later text", file));
  EXPECT_FALSE(wrote("other text", file));
  EXPECT_FALSE(wrote("text", folder_ / "Other.md"));
  pass(599);
  EXPECT_TRUE(wrote("text", file));
  pass(1);
  EXPECT_FALSE(wrote("text", file));
}

TEST_F(OwnContent, PrunesWhatIsOldAtMostTwiceAMinute) {
  LKOwnFileContent::record("first", folder_ / "a.md");
  pass(590);
  LKOwnFileContent::record("second", folder_ / "b.md");
  pass(11);
  LKOwnFileContent::record("third", folder_ / "c.md");  // 11 seconds after the last pruning
  EXPECT_EQ(LKOwnFileContent::count(), 3U);
  pass(20);
  LKOwnFileContent::record("fourth", folder_ / "d.md");
  EXPECT_EQ(LKOwnFileContent::count(), 3U);
  EXPECT_TRUE(wrote("second", folder_ / "b.md"));
}

TEST_F(OwnContent, KnowsAFileByAnyOfItsNames) {
  fs::create_directory(folder_ / "notes");
  fs::create_symlink("notes", folder_ / "link");
  LKOwnFileContent::record("text", folder_ / "notes/PL\u00C4NE.MD");
  EXPECT_TRUE(wrote("text", folder_ / "link/pla\u0308ne.md"));
  LKOwnFileContent::record("text", folder_ / "notes/picture.png");
  EXPECT_FALSE(wrote("text", folder_ / "notes/picture.png"));
}

TEST_F(OwnContent, IsRecordedAlsoWhenTheWriteFails) {
  const fs::path nowhere = folder_ / "missing/Plan.md";
  EXPECT_THROW(LKFileWrite::atomically("text", nowhere), FileError);
  EXPECT_TRUE(wrote("text", nowhere));
  EXPECT_THROW((void)LKFileWrite::createAtomically("made", nowhere), FileError);
  EXPECT_TRUE(wrote("made", nowhere));
}

TEST_F(OwnContent, WritingReplacesAndCreatingDoesNot) {
  const fs::path file = folder_ / "Plan.md";
  EXPECT_TRUE(LKFileWrite::createAtomically("first", file));
  EXPECT_FALSE(LKFileWrite::createAtomically("second", file));
  EXPECT_EQ(LKFileAvailability::dataIfSafeToReadNow(file), "first");
  LKFileWrite::atomically("third", file);
  EXPECT_EQ(LKFileAvailability::dataIfSafeToReadNow(file), "third");
  EXPECT_EQ(LKFileAvailability::dataIfSafeToReadNow(folder_ / "none.md"), std::nullopt);
}

TEST_F(OwnContent, AttributesOutliveAReplacementByOtherMeans) {
  const fs::path file = folder_ / "Plan.md";
  writeWhole(file, "old");
  writeAttributes(file, {{"user.color", "blue"}});
  const FileAttributes before = readAttributes(file);
  LKFileWrite::preservingAttributes(file, [&] {
    fs::remove(file);
    writeWhole(file, "new");
  });
  EXPECT_EQ(readAttributes(file), before);
}

TEST(Dates, AreReadAndSet) {
  const TempFolder folder;
  const Instant date{.seconds = 1'700'000'000, .nanoseconds = 42};
  writeWhole(folder / "Plan.md", "text");
  lkSetContentModificationDate(folder / "Plan.md", date);
  EXPECT_EQ(lkContentModificationDate(folder / "Plan.md"), date);
  EXPECT_EQ(lkContentModificationDate(folder / "none.md"), std::nullopt);
  EXPECT_THROW(lkSetContentModificationDate(folder / "none.md", date), FileError);
}

std::future<bool> settled(const fs::path& url, std::chrono::milliseconds timeout) {
  return asio::co_spawn(backgroundPool(), LKOwnFileWrites::settled(url, timeout), asio::use_future);
}

TEST(OwnWrites, AreCountedUntilTheLastOneEnds) {
  const TempFolder folder;
  const fs::path file = folder / "Plan.md";
  fs::create_symlink("Plan.md", folder / "Link.md");
  LKOwnFileWrites::end(file);  // one too many changes nothing
  LKOwnFileWrites::begin(file);
  EXPECT_TRUE(LKOwnFileWrites::isInFlight(folder / "../" / folder.path().filename() / "Plan.md"));
  writeWhole(file, "text");
  {
    const LKOwnFileWrites::Scope second(folder / "Link.md");
    LKOwnFileWrites::end(file);
    EXPECT_TRUE(LKOwnFileWrites::isInFlight(file));
  }
  EXPECT_FALSE(LKOwnFileWrites::isInFlight(file));
}

TEST(OwnWrites, SettleAtOnceOrAtTheEndOrAtTheTimeout) {
  const fs::path file = "/notes/Plan.md";
  // So short that a single wait of the poll would show.
  EXPECT_TRUE(settled(file, 0ms).get());
  LKOwnFileWrites::begin(file);
  EXPECT_FALSE(settled(file, 30ms).get());
  std::future<bool> waiting = settled(file, 60s);
  EXPECT_EQ(waiting.wait_for(50ms), std::future_status::timeout);
  LKOwnFileWrites::end(file);
  EXPECT_TRUE(waiting.get());
}

TEST(Report, TellsWhyAndOfWhich) {
  const auto reason = [](int code) {
    return LKNoteWriteReport::reason(FileError("/notes/Plan.md", code));
  };
  const std::string locked = "the file is locked or not writable. Check Get Info in the Finder.";
  EXPECT_EQ(reason(EACCES), locked);
  EXPECT_EQ(reason(EPERM), locked);
  EXPECT_EQ(reason(EROFS), locked);
  EXPECT_EQ(reason(ENOENT), "the file is missing.");
  EXPECT_EQ(reason(EDQUOT), reason(ENOSPC));
  EXPECT_NE(reason(ENOSPC).find("disk is full"), std::string::npos);
  EXPECT_EQ(reason(EIO), "/notes/Plan.md: Input/output error");
  const std::error_code missing(ENOENT, std::generic_category());
  EXPECT_EQ(LKNoteWriteReport::reason(fs::filesystem_error("x", missing)), "the file is missing.");

  LKNoteWriteReport report{.action = "move", .succeeded = {}, .failures = {}};
  report.succeed(UUID::random());
  EXPECT_EQ(report.message(), std::nullopt);
  report.fail(UUID::random(), "Plan", FileError("/notes/Plan.md", ENOENT));
  EXPECT_EQ(report.message(), "Couldn't move “Plan”: the file is missing.");
  report.fail(UUID::random(), "Garden", std::string("it rains."));
  EXPECT_EQ(report.message(),
            "Couldn't move 2 of 3 notes:\n“Plan”: the file is missing.\n“Garden”: it rains.");
}

}  // namespace
}  // namespace lk
