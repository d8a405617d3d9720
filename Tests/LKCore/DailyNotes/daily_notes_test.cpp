// Daily notes: their days in every zone, their generated blocks, and the files.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <ctime>
#include <deque>
#include <filesystem>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "LKCore/DailyNotes/DailyNoteBlocks.h"
#include "LKCore/DailyNotes/LKDailyNoteService.h"
#include "LKCore/DailyNotes/LKNoIndexRegion.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/NoteFiles/LKSyncError.h"
#include "LKCore/Tags/LKTagExtractor.h"
#include "LKCore/Tasks/TaskStatus.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
namespace daily = LKDailyNoteService;

constexpr Day kDay = {2026, 3, 14};
constexpr const char* kCentralEurope = "CET-1CEST,M3.5.0,M10.5.0/3";
const std::string kOpen = "<!--lk:noindex-->\n";
const std::string kClose = "<!--/lk:noindex-->";

void setZone(const char* zone) {
  setenv("TZ", zone, 1);
  tzset();
}

Instant at(const char* text) {
  return parseISO8601(text).value();
}

class DailyNotes : public testing::Test {
 protected:
  DailyNotes() {
    setenv("LC_ALL", "C", 1);
    setZone("UTC");
  }
  ~DailyNotes() override { setZone("UTC"); }

  LKNote& note(const std::string& title, const std::string& text = "") {
    LKNote& row = notes.emplace_back(title, text);
    row.id = UUID::random();
    all.push_back(&row);
    return row;
  }
  LKNote& note(const std::string& title, Instant created, Instant modified) {
    LKNote& row = note(title);
    row.creationDate = created;
    row.modifiedDate = modified;
    return row;
  }
  // The task of the note's line, due on the day.
  LKTask& task(LKNote& of, int line, std::optional<Day> due = kDay) {
    LKTask& row = rows.emplace_back();
    row.paragraphIndex = line;
    row.dateDue = due;
    row.text = "row's text";
    setNote(row, &of);
    tasks.push_back(&row);
    return row;
  }

  std::deque<LKNote> notes;
  std::deque<LKTask> rows;
  std::vector<LKNote*> all;
  std::vector<LKTask*> tasks;
};

TEST_F(DailyNotes, BelongToTheLocalDayAndKeepItInEveryZone) {
  const std::vector<std::tuple<const char*, const char*, std::string>> moments = {
      {"PST8PDT,M3.2.0,M11.1.0", "2026-03-15T06:30:00Z", "20260314"},  // 23:30
      {"XXX-14", "2026-03-13T10:00:00Z", "20260314"},                  // midnight
      {kCentralEurope, "2026-03-28T23:00:00Z", "20260329"},            // a day of 23 hours
      {kCentralEurope, "2026-10-25T22:59:59Z", "20261025"},            // the end of one of 25
      {"YYY+11", "2028-03-01T10:00:00Z", "20280229"},
  };
  for (const auto& [zone, moment, key] : moments) {
    setZone(zone);
    const Day day = daily::normalisedDailyDate(at(moment));
    EXPECT_EQ(daily::dayKeyForLocalDay(at(moment)), key);
    for (const char* other : {"UTC", "XXX-14", "YYY+11", kCentralEurope}) {
      setZone(other);
      EXPECT_EQ(daily::dayKeyForStored(day), key) << other;
      EXPECT_EQ(daily::normalisedDailyDate(daily::localDay(day)), day) << other;
    }
  }
}

TEST_F(DailyNotes, AreSpokenOfAsSeenFromNow) {
  setZone("EST5");
  const std::vector<std::tuple<Day, const char*, std::string>> cases = {
      {kDay, "2026-03-14T05:00:00Z", "today's daily note"},
      {kDay, "2026-03-15T04:59:59Z", "today's daily note"},
      {kDay, "2026-03-15T05:00:00Z", "yesterday's daily note"},
      {kDay, "2026-03-14T04:59:59Z", "tomorrow's daily note"},
      {{2028, 2, 29}, "2026-03-16T05:00:00Z", "the daily note for Tuesday 29 February 2028"},
  };
  for (const auto& [day, now, name] : cases) EXPECT_EQ(daily::spokenName(day, at(now)), name);
}

TEST_F(DailyNotes, ListWhatIsDueInTheWordsOfItsLines) {
  LKNote& home = note("Home", "Words\n\t- [ ] Pay rent due:2026-03-13\t\n- [/] See " + kClose +
                                  " due:2026-03-14\n- [ ] Later due:2026-03-15");
  task(home, 1, Day{2026, 3, 13});
  task(home, 2);
  task(home, 3, Day{2026, 3, 15});
  task(home, 0, std::nullopt);
  task(home, 2).statusRaw = static_cast<int>(TaskStatus::cancelled);
  task(home, 2).isComplete = true;
  LKNote& hostile = note("a\n" + kClose + "\r\n[[b]]", "- [ ] no longer a task here");
  task(hostile, 7, Day{1, 1, 1});
  task(note("", "- [ ] Untitled's due:2026-03-14"), 0);
  LKNote& yesterdays = note("20260313", "- [ ] Left due:2026-03-14");
  yesterdays.dailyDate = kDay.adding(-1);
  task(yesterdays, 0);
  LKNote& trashed = note("Trashed", "- [ ] a due:2026-03-14");
  trashed.isTrashed = true;
  LKNote& archived = note("Archived", "- [ ] b due:2026-03-14");
  archived.status = "archived";
  LKNote& own = note("20260314", "- [ ] c due:2026-03-14");
  own.dailyDate = kDay;
  for (LKNote* skipped : {&trashed, &archived, &own}) task(*skipped, 0);

  const std::string sections = daily::taskSections(kDay, tasks);
  EXPECT_EQ(sections, kOpen +
                          "## Overdue\n\n- [ ] Pay rent due:2026-03-13 — [[Home]]\n"
                          "- [ ] row's text due:0001-01-01 — [[a " +
                          kClose + "  [[b]]]]\n\n" + "## Due Today\n\n- [/] See " + kClose +
                          " due:2026-03-14 — [[Home]]\n"
                          "- [ ] Untitled's due:2026-03-14 — [[Untitled]]\n"
                          "- [ ] Left due:2026-03-14 — [[20260313]]\n\n" +
                          kClose + "\n\n");
  EXPECT_EQ(daily::taskSections({1, 1, 1}, {tasks[1]}), "");

  const std::string body = daily::withTaskBlock("# Day\n\nwords", sections);
  EXPECT_EQ(daily::withTaskBlock(body, sections), body);
  EXPECT_EQ(daily::withTaskBlock(body, ""), "# Day\n\nwords");
  EXPECT_EQ(LKTagExtractor::extract(body).tasks.size(), 0U);
}

TEST_F(DailyNotes, ListTheActivityOfADayOf23Hours) {
  setZone(kCentralEurope);
  const Instant first = at("2026-03-28T23:00:00Z");
  const Instant last = at("2026-03-29T21:59:59Z");
  const Instant next = at("2026-03-29T22:00:00Z");
  const Instant before = at("2026-03-28T22:59:59Z");
  note("Plan 10", first, next);
  note("Plan 2", last, last);
  note("", before, last);
  note("changed\nlines", before, first);
  note("next", next, next);
  note("before", before, before);
  const UUID self = note("self", first, first).id;
  note("trashed", first, first).isTrashed = true;
  note("archived", first, first).status = "archived";
  note("20260328", first, first).dailyDate = Day{2026, 3, 28};
  EXPECT_EQ(daily::activityBlock({2026, 3, 29}, all, self, at("2026-03-29T07:26:59Z")),
            kOpen +
                "## Activity\n\n*Activity summary — updated 9:26 AM*\n\n"
                "### Created\n\n- [[Plan 2]]\n- [[Plan 10]]\n\n"
                "### Modified\n\n- [[Untitled]]\n- [[changed lines]]\n\n" +
                kClose + "\n");
}

TEST_F(DailyNotes, BeginWithWhatTheUserChose) {
  task(note("Home", "- [ ] Pay due:2026-03-14"), 0);
  const std::string heading = "# Saturday 14 March 2026\n\n";
  const std::string sections = daily::taskSections(kDay, tasks);
  const Instant now = at("2026-03-14T12:00:00Z");
  const auto seeded = [&](std::optional<int64_t> raw) {
    return daily::startingBody(kDay, dailySeed(raw), tasks, {}, "\n\n", now);
  };
  for (const auto& raw : std::vector<std::optional<int64_t>>{std::nullopt, -1, 0, 3}) {
    EXPECT_EQ(seeded(raw), heading);
  }
  EXPECT_EQ(seeded(1), heading + sections);
  EXPECT_EQ(seeded(2), heading + sections + kOpen +
                           "## Activity\n\n*Activity summary — updated 12:00 PM*\n\n"
                           "*No note activity on this day.*\n\n" +
                           kClose + "\n");
}

struct PlaceCase {
  const char* name;
  std::string body;
  std::string with;     // a block in place
  std::string without;  // no block
};

TEST_F(DailyNotes, FindTheirTaskBlockAndNothingElse) {
  const std::string block = kOpen + "## Due Today\n\n- [ ] new\n\n" + kClose;
  const std::string old = kOpen + "## Overdue\n\n- [ ] old " + kClose + "\n\n" + kClose;
  const std::string unclosed = kOpen + "## Overdue\n\n- [ ] lost";
  const std::string other = kOpen + "## Activity\n\n" + kClose;
  const std::string similar = kOpen + "## Overdue books\n" + kClose;
  const std::vector<PlaceCase> cases = {
      {"an empty body", "", block + "\n", ""},
      {"blank lines behind the first", "# H\n\n\n\nx", "# H\n\n" + block + "\n\nx", "# H\n\n\n\nx"},
      {"in the middle", "# H\n" + old + "\n\n\ny", "# H\n" + block + "\n\n\ny", "# H\n\ny"},
      {"at the end", "x\n\n" + old, "x\n\n" + block, "x\n"},
      {"at the start", old + "\n\nx", block + "\n\nx", "x"},
      {"alone", old + "\n", block + "\n", ""},
      {"unclosed, another region behind", "# H\n\n" + unclosed + "\n\nmine\n" + other,
       "# H\n\n" + block + "\n\n" + unclosed + "\n\nmine\n" + other,
       "# H\n\n" + unclosed + "\n\nmine\n" + other},
      {"a region first", other + "\nx", block + "\n\n" + other + "\nx", other + "\nx"},
      {"a fence first", "```\nx\n```", block + "\n\n```\nx\n```", "```\nx\n```"},
      {"another heading", "x\n" + similar, "x\n\n" + block + "\n\n" + similar, "x\n" + similar},
  };
  for (const PlaceCase& each : cases) {
    const std::string body = daily::withTaskBlock(each.body, block + "\n\n");
    EXPECT_EQ(body, each.with) << each.name;
    EXPECT_EQ(daily::withTaskBlock(body, block + "\n\n"), body) << each.name;
    EXPECT_EQ(daily::withTaskBlock(each.body, ""), each.without) << each.name;
  }
  EXPECT_EQ(daily::withActivityBlock("x\n\n\n", other + "\n"), "x\n\n" + other + "\n");
  EXPECT_EQ(daily::withActivityBlock(other + "\ny", similar), similar + "\ny");
}

TEST_F(DailyNotes, RegionsAreThoseThatTheExtractorLeavesOut) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"[[a]]", "[[a]]"},
      {"a\n" + kOpen + "[[b]]\n" + kClose + "\n[[c]]", "a\n\n[[c]]"},
      {" \t" + kOpen + kOpen + "[[b]]\n" + kClose + " \n" + kClose + "\n[[c]]",
       "\n" + kClose + "\n[[c]]"},
      {"[[a]]\n" + kOpen + "[[b]]\n[[c]]", "[[a]]\n"},
      {"- " + kOpen + "[[b]]\n" + kClose, "- " + kOpen + "[[b]]\n" + kClose},
      {kOpen + "[[b]] " + kClose + "\n[[c]]", ""},
  };
  for (const auto& [text, rest] : cases) {
    EXPECT_EQ(LKNoIndexRegion::removingRegions(text), rest) << text;
    EXPECT_EQ(LKTagExtractor::extract(text).backlinks, LKTagExtractor::extract(rest).backlinks)
        << text;
  }
  const std::string generated = kOpen + "[[Work]]\n" + kClose;
  EXPECT_TRUE(LKNoIndexRegion::isOnlyGenerated("work", generated));
  EXPECT_FALSE(LKNoIndexRegion::isOnlyGenerated("Work", generated + "\n[[work]]"));
  EXPECT_FALSE(LKNoIndexRegion::isOnlyGenerated("Wo", generated));
}

TEST_F(DailyNotes, AreSeededOnceAndAppendedTo) {
  const test::TempFolder folder;
  const auto append = [&](const std::string& text, bool blankLine) {
    const fs::path file = daily::appendText(text, kDay, folder.path(), "# Seed\n\n", blankLine);
    return parseDocument(test::readWhole(file)).body;
  };
  EXPECT_THROW(append("\xFF", false), LKDailyNoteError);
  EXPECT_FALSE(fs::exists(folder / ".daily"));
  EXPECT_EQ(append("one\r\ntwo\n\n", false), "# Seed\n\none\ntwo\n");
  EXPECT_EQ(append("- three", false), "# Seed\n\none\ntwo\n- three\n");
  EXPECT_EQ(append("- [ ] four", true), "# Seed\n\none\ntwo\n- three\n\n- [ ] four\n");

  const fs::path file = daily::dailyNoteURL(kDay, folder.path());
  EXPECT_EQ(parseDocument(test::readWhole(file)).frontMatter.taskEntries.size(), 1U);
  struct stat before {};
  struct stat after {};
  ASSERT_EQ(stat(file.c_str(), &before), 0);
  EXPECT_FALSE(daily::updateBody(file, [](const std::string& body) { return body; }));
  ASSERT_EQ(stat(file.c_str(), &after), 0);
  EXPECT_EQ(after.st_ino, before.st_ino);  // a write puts another file in its place
  EXPECT_TRUE(daily::updateBody(file, [](const std::string&) { return "x"; }));

  test::writeWhole(file, "no block");
  EXPECT_THROW(append("lost?", false), LKSyncError);
  EXPECT_EQ(test::readWhole(file), "no block");
}

}  // namespace
}  // namespace lk
