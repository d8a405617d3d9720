#include "LKCore/DataModel/NoteRow.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <string>

#include "LKCore/Base/Words.h"
#include "LKCore/DataModel/LKLooseDate.h"

namespace lk {
namespace {

namespace fs = std::filesystem;

// --- Following a file ----------------------------------------------------------------------------

// A file's state, and the row that has adopted it.
struct FileState {
  fs::path url = "/notes/Plan.md";
  std::string title = "Plan";
  Instant modified = {1000, 500};
  LKFileFrontMatter frontMatter = {};
  std::string body = "- [ ] one due:2000-01-01\n- [x] two\n![](a.png)";

  LKNoteSyncChanges adoptInto(LKNote& note) const {
    return syncProperties(note, url, title, modified, frontMatter, body, std::nullopt, {2000, 0});
  }
};

LKNote adopted(const FileState& state = {}) {
  LKNote note;
  state.adoptInto(note);
  return note;
}

TEST(SyncProperties, FillsANewRowAndThenChangesNothing) {
  FileState state;
  state.frontMatter.userProperties = {{"mood", "calm"}};
  state.frontMatter.dailyDate = Day{2026, 3, 1};
  state.frontMatter.created = {77, 0};
  LKNote note;
  EXPECT_TRUE(state.adoptInto(note).anyChanged);
  EXPECT_EQ(note.title, "Plan");
  EXPECT_EQ(note.fileURL, state.url);
  EXPECT_EQ(note.text, state.body);
  EXPECT_EQ(note.modifiedDate, (Instant{1000, 500}));
  EXPECT_EQ(note.sortModifiedDate, (Instant{1000, 0}));
  EXPECT_EQ(note.creationDate, (Instant{77, 0}));
  EXPECT_EQ(note.userProperties.at("mood"), "calm");
  EXPECT_EQ(note.dailyDate, (Day{2026, 3, 1}));
  EXPECT_TRUE(note.hasActiveTasks);
  EXPECT_EQ(note.activeTaskCount, 1);
  EXPECT_EQ(note.doneTaskCount, 1);
  EXPECT_EQ(note.imageAttachments, std::vector<std::string>{"a.png"});
  EXPECT_EQ(note.size, static_cast<int64_t>(state.body.size()));
  EXPECT_GT(note.lineCount, 3);
  EXPECT_EQ(state.adoptInto(note), LKNoteSyncChanges{});
}

struct SyncCase {
  std::string name;
  std::function<void(FileState&)> change;
  LKNoteSyncChanges wanted;
  std::function<bool(const LKNote&)> holds;
};

class Syncing : public testing::TestWithParam<SyncCase> {};

TEST_P(Syncing, ReportsAndAdopts) {
  FileState state;
  state.frontMatter.contentHash = "old";
  LKNote note = adopted(state);
  GetParam().change(state);
  const LKNoteSyncChanges changes = state.adoptInto(note);
  EXPECT_EQ(changes, GetParam().wanted) << changes.trashedChanged << changes.newTrashedValue
                                        << changes.statusBecameArchived << changes.anyChanged;
  EXPECT_TRUE(GetParam().holds(note));
  EXPECT_EQ(state.adoptInto(note), LKNoteSyncChanges{});
}

constexpr LKNoteSyncChanges kAny = {.anyChanged = true};
constexpr Instant kEarlier = {900, 0};

bool hasOldDate(const LKNote& note) {
  return note.modifiedDate == Instant{1000, 500};
}

INSTANTIATE_TEST_SUITE_P(
    Changes, Syncing,
    testing::Values(
        SyncCase{"trashed",
                 [](FileState& s) {
                   s.url = "/notes/.trash/Plan.md";
                   s.frontMatter.userProperties["status"] = "draft";
                 },
                 {.trashedChanged = true, .newTrashedValue = true, .anyChanged = true},
                 [](const LKNote& n) { return n.isTrashed && n.status == "draft"; }},
        SyncCase{"a_name_that_only_looks_like_the_trash",
                 [](FileState& s) { s.url = "/notes/x.trash/Plan.md"; }, kAny,
                 [](const LKNote& n) { return !n.isTrashed; }},
        SyncCase{"archived",
                 [](FileState& s) {
                   s.frontMatter.isArchived = true;
                   s.frontMatter.userProperties["status"] = "draft";
                 },
                 {.statusBecameArchived = true, .anyChanged = true},
                 [](const LKNote& n) { return n.status == "archived"; }},
        SyncCase{"no_hash_leaves_the_hash",
                 [](FileState& s) { s.frontMatter.contentHash.reset(); },
                 {},
                 [](const LKNote& n) { return n.contentHash == "old"; }},
        SyncCase{"hash", [](FileState& s) { s.frontMatter.contentHash = "new"; }, kAny,
                 [](const LKNote& n) { return n.contentHash == "new" && hasOldDate(n); }},
        SyncCase{"body_at_the_same_time", [](FileState& s) { s.body = "new"; }, kAny,
                 [](const LKNote& n) {
                   return n.text == "new" && !n.hasActiveTasks && hasOldDate(n) && n.size == 3;
                 }},
        SyncCase{"older_date_alone", [](FileState& s) { s.modified = kEarlier; }, {}, hasOldDate},
        SyncCase{"older_date_with_a_change",
                 [](FileState& s) {
                   s.modified = kEarlier;
                   s.title = "New";
                 },
                 kAny,
                 [](const LKNote& n) { return n.modifiedDate == kEarlier && n.title == "New"; }},
        SyncCase{"later_date_alone",
                 [](FileState& s) {
                   s.modified = {1000, 501};
                 },
                 kAny,
                 [](const LKNote& n) {
                   return n.modifiedDate == Instant{1000, 501};
                 }},
        SyncCase{"flags",
                 [](FileState& s) {
                   s.frontMatter.isFavourite = true;
                   s.frontMatter.isBook = true;
                   s.frontMatter.tagRanks = {{"a", "r"}};
                 },
                 kAny,
                 [](const LKNote& n) {
                   return n.isFavourite && n.isBook && n.tagRanks.at("a") == "r";
                 }}),
    [](const auto& row) { return row.param.name; });

TEST(MatchesOnLaunch, ComparesDatePlaceAndDigestsThatAreThere) {
  LKNote note = adopted();
  const Instant date = note.modifiedDate;
  EXPECT_TRUE(matchesOnLaunch(note, date, note.fileURL, "any"));
  note.fileDigest = "abc";
  EXPECT_TRUE(matchesOnLaunch(note, date, note.fileURL, "abc"));
  EXPECT_TRUE(matchesOnLaunch(note, date, note.fileURL, ""));
  EXPECT_FALSE(matchesOnLaunch(note, date, note.fileURL, "abd"));
  EXPECT_FALSE(matchesOnLaunch(note, {date.seconds, 0}, note.fileURL, "abc"));
  EXPECT_FALSE(matchesOnLaunch(note, date, std::nullopt, "abc"));
  note.fileURL.reset();
  EXPECT_TRUE(matchesOnLaunch(note, date, std::nullopt, "abc"));
}

// --- Words ---------------------------------------------------------------------------------------

TEST(Words, AreCountedByUnicodesBoundaries) {
  const std::pair<std::string, size_t> cases[] = {
      {"", 0},
      {" \n\t", 0},
      {"one two,three", 3},
      {"don't 3.14 1,000 e.g. ...", 4},
      {"- [ ] task #tag/sub", 3},
      {"snake_case x-y", 3},
      {"Stra\u00DFe, na\u00EFve caf\u00E9", 3},
      {"\u0434\u043E\u043C 42 \u043C\u0438\u0440", 3},
      {"seed \u2014 bed", 2},
  };
  for (const auto& [text, wanted] : cases) EXPECT_EQ(wordCount(text), wanted) << text;
}

// A letter outside ASCII in each run sends the whole of it to ICU; it is a word of its own, since
// a line separator stands between.
TEST(Words, AreCountedTheSameWithAndWithoutTheShortcut) {
  std::mt19937 random(7);
  static constexpr std::string_view kAlphabet = "ab1 .,:;'\"_-/#[]()\n\tZ9";
  for (int round = 0; round < 3000; ++round) {
    std::string text;
    std::string throughICU;
    for (int i = 0; i < 12; ++i) {
      const char c = kAlphabet[random() % kAlphabet.size()];
      const bool isGap = c == ' ' || c == '\n' || c == '\t';
      text.push_back(c);
      throughICU += isGap ? "\u2028" : std::string(1, c);
    }
    throughICU += "\u2028\u00E9";
    EXPECT_EQ(wordCount(text) + 1, wordCount(throughICU)) << text;
  }
}

// --- Loose dates ---------------------------------------------------------------------------------

struct LooseCase {
  std::string name;
  std::string text;
  std::optional<bool> dayFirst;
  std::optional<Day> wanted;
};

class LooseDates : public testing::TestWithParam<LooseCase> {};

TEST_P(LooseDates, AreRead) {
  EXPECT_EQ(LKLooseDate::parse(GetParam().text, GetParam().dayFirst), GetParam().wanted);
}

constexpr std::optional<Day> kNoDay = std::nullopt;

INSTANTIATE_TEST_SUITE_P(
    Texts, LooseDates,
    testing::Values(LooseCase{"day_above_12", "31/12/24", false, Day{2024, 12, 31}},
                    LooseCase{"day_above_12_second", "12/31/24", true, Day{2024, 12, 31}},
                    LooseCase{"both_above_12", "13/13/24", true, kNoDay},
                    LooseCase{"day_first", "03/04/05", true, Day{2005, 4, 3}},
                    LooseCase{"month_first", "03/04/05", false, Day{2005, 3, 4}},
                    LooseCase{"year_first", " 2024-02-29\n", std::nullopt, Day{2024, 2, 29}},
                    LooseCase{"no_such_day", "2024-02-30", std::nullopt, kNoDay},
                    LooseCase{"31_april", "31.4.2024", std::nullopt, kNoDay},
                    LooseCase{"year_of_one_digit", "1/2/3", true, Day{2003, 2, 1}},
                    LooseCase{"year_of_three_digits", "1/2/123", true, Day{123, 2, 1}},
                    LooseCase{"year_29", "1/2/29", true, Day{2029, 2, 1}},
                    LooseCase{"year_30", "1/2/30", true, Day{1930, 2, 1}},
                    LooseCase{"year_000", "1/2/000", true, kNoDay},
                    LooseCase{"mixed_and_doubled_marks", "--1.2//2024-", true, Day{2024, 2, 1}},
                    LooseCase{"two_pieces", "1/2", true, kNoDay},
                    LooseCase{"four_pieces", "1/2/3/4", true, kNoDay},
                    LooseCase{"five_digits", "1/2/20240", true, kNoDay},
                    LooseCase{"sign", "1/2/+24", true, kNoDay},
                    LooseCase{"blank_inside", "1/ 2/24", true, kNoDay},
                    LooseCase{"other_digits", "\u0661/2/24", true, kNoDay},
                    LooseCase{"at_24_bytes", "1/2/2024" + std::string(16, '/'), true,
                              Day{2024, 2, 1}},
                    LooseCase{"at_25_bytes", "1/2/2024" + std::string(17, '/'), true, kNoDay},
                    LooseCase{"empty", " ", true, kNoDay}),
    [](const auto& row) { return row.param.name; });

TEST(LooseDates, MakeADateColumnWithSixOfTenCells) {
  const std::string date = "2024-03-01";
  EXPECT_TRUE(LKLooseDate::isDateColumn({date, date, date, "x", "y"}));
  EXPECT_FALSE(LKLooseDate::isDateColumn({date, date, "x", "y"}));
  EXPECT_FALSE(LKLooseDate::isDateColumn({date, "", "  "}));
  EXPECT_TRUE(LKLooseDate::isDateColumn({date, "", date, "\t"}));
  EXPECT_FALSE(LKLooseDate::isDateColumn({}));
}

TEST(LooseDates, KnowTheOrderOfARegionsPattern) {
  EXPECT_TRUE(LKLooseDate::putsDayFirst("d.M.y"));
  EXPECT_TRUE(LKLooseDate::putsDayFirst("y"));
  EXPECT_FALSE(LKLooseDate::putsDayFirst("M/d/y"));
  EXPECT_FALSE(LKLooseDate::putsDayFirst("y. M. d."));
}

}  // namespace
}  // namespace lk
