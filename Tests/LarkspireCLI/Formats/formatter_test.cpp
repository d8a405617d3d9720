// The two faces of the listings: exact JSON, exact lines, and what a terminal makes of the lines.

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <deque>
#include <string>
#include <vector>

#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/Text.h"
#include "LarkspireCLI/Support/AttachmentScanner.h"
#include "LarkspireCLI/Support/OutputFormatter.h"
#include "LarkspireCLI/Support/TextColumns.h"

namespace lk {
namespace {

void useZone(const char* zone) {
  setenv("TZ", zone, 1);
  tzset();
}

// 2026-03-14T09:26:53Z.
constexpr Instant kMoment = {1'773'480'413, 500'000'000};

class Formatter : public testing::Test {
 protected:
  Formatter() { useZone("UTC"); }

  LKNote& note(const std::string& title) {
    LKNote& row = notes_.emplace_back();
    row.title = title;
    row.creationDate = kMoment;
    row.setModifiedDate(kMoment);
    return row;
  }
  LKTag& tag(const std::string& text) {
    LKTag& row = tags_.emplace_back();
    row.text = text;
    return row;
  }

 private:
  std::deque<LKNote> notes_;
  std::deque<LKTag> tags_;
};

TEST_F(Formatter, WritesNotesAsRowsAndLines) {
  LKNote& plan = note("Plan \"A/B\"");
  plan.isFavourite = true;
  plan.activeTaskCount = 1;
  plan.doneTaskCount = 2;
  plan.overdueTaskCount = 1;
  plan.userProperties = {{"status", "Draft"}};
  plan.fileURL = "/notes/Plan A.md";
  addTag(plan, tag("work/a"));
  addTag(plan, tag("home"));
  LKNote& daily = note("20260314");
  daily.dailyDate = Day{2026, 3, 14};
  EXPECT_EQ(OutputFormatter::formatNoteList({&plan, &daily}, false),
            "Plan \"A/B\" *  2026-03-14 09:26  #home #work/a  (1/3 tasks, 1 overdue)\n"
            "Saturday 14 March 2026  2026-03-14 09:26");
  EXPECT_EQ(OutputFormatter::formatNoteList({&plan}, true),
            "[\n  {\n"
            "    \"activeTaskCount\" : 1,\n"
            "    \"createdDate\" : \"2026-03-14T09:26:53Z\",\n"
            "    \"doneTaskCount\" : 2,\n"
            "    \"fileURL\" : \"file:\\/\\/\\/notes\\/Plan%20A.md\",\n"
            "    \"id\" : \"00000000-0000-0000-0000-000000000000\",\n"
            "    \"isFavourite\" : true,\n"
            "    \"isTrashed\" : false,\n"
            "    \"modifiedDate\" : \"2026-03-14T09:26:53Z\",\n"
            "    \"overdueTaskCount\" : 1,\n"
            "    \"properties\" : {\n      \"status\" : \"Draft\"\n    },\n"
            "    \"tags\" : [\n      \"home\",\n      \"work\\/a\"\n    ],\n"
            "    \"title\" : \"Plan \\\"A\\/B\\\"\"\n"
            "  }\n]");
  EXPECT_EQ(OutputFormatter::formatNoteList({}, true), "[]");
  EXPECT_EQ(OutputFormatter::formatNoteList({}, false), "No notes found.");
  const Json rows = parseJson(OutputFormatter::formatNoteList({&daily}, true));
  EXPECT_EQ(rows[0].at("title"), "20260314");
  EXPECT_FALSE(rows[0].contains("fileURL"));
}

TEST_F(Formatter, WritesTasksAsRowsAndLines) {
  LKTask full;
  full.text = "Order seeds";
  full.statusRaw = 1;
  full.dateDue = Day{2026, 3, 20};
  full.priority = 3;
  full.project = "spring";
  full.contexts = {"errand", "home"};
  setNote(full, &note("Garden"));
  LKTask bare;
  bare.text = "Done";
  bare.statusRaw = 2;
  bare.isComplete = true;
  bare.dateCompleted = Day{2026, 3, 1};
  EXPECT_EQ(OutputFormatter::formatTaskList({&full, &bare}, false),
            "[/] Order seeds  due:2026-03-20  priority:high  project:spring  "
            "context:errand,home  Garden\n"
            "[x] Done  Unknown");
  const Json rows = parseJson(OutputFormatter::formatTaskList({&full, &bare}, true));
  const std::string id = UUID().text();
  EXPECT_EQ(rows, parseJson(R"([{"contexts":["errand","home"],"due":"2026-03-20",
      "dueDate":"2026-03-20T00:00:00Z","id":")" +
                            id + R"(","isComplete":false,
      "noteTitle":"Garden","priority":"high","project":"spring","status":"in_progress",
      "text":"Order seeds"},
      {"contexts":[],"done":"2026-03-01","doneDate":"2026-03-01T00:00:00Z","id":")" +
                            id + R"(","isComplete":true,"noteTitle":"Unknown","status":"done",
      "text":"Done"}])"));
  EXPECT_EQ(OutputFormatter::formatTaskList({}, false), "No tasks found.");
  EXPECT_EQ(OutputFormatter::formatTaskResult("Done.", std::nullopt, true),
            "{\n  \"message\" : \"Done.\"\n}");
}

TEST_F(Formatter, PutsTheTagWithMostNotesFirstForScripts) {
  const std::vector<TagRow> rows = {{"b", 1}, {"A", 1}, {"two", 2}};
  EXPECT_EQ(OutputFormatter::formatTagList(rows, false),
            "#A (1 notes)\n#b (1 notes)\n#two (2 notes)");
  EXPECT_EQ(parseJson(OutputFormatter::formatTagList(rows, true)),
            parseJson(R"([{"noteCount":2,"tag":"two"},{"noteCount":1,"tag":"A"},
                          {"noteCount":1,"tag":"b"}])"));
}

TEST_F(Formatter, WritesWhatIsSetOfAProperty) {
  PropertyDetailRow rating;
  rating.name = "rating";
  rating.type = "number";
  rating.isRequired = true;
  rating.createdDate = kMoment;
  rating.minValue = 1;
  rating.maxValue = 4.5;
  rating.notes = {"A"};
  EXPECT_EQ(OutputFormatter::formatPropertyDetail(rating, false),
            "Name: rating\nType: number\nCreated: 2026-03-14T09:26:53Z\nUsed by: 0 notes\n"
            "Required: yes\nMin: 1\nMax: 4.5\nNotes:\n  A");
  EXPECT_EQ(OutputFormatter::formatOrphanList({{"mood", 1, {"A"}}}, false),
            "1 orphaned property keys (no schema definition):\nmood (1 notes)");
}

TEST(DatesOfRows, AreTheCalendarsInAnyZoneAndOrder) {
  for (const char* zone : {"UTC", "CET-1CEST,M3.5.0,M10.5.0/3", "XXX+11:30", "YYY-13:45"}) {
    useZone(zone);
    DateTexts dates;
    for (int64_t seconds = -90'000'000; seconds < 1'800'000'000; seconds += 1'234'567) {
      const Instant instant = {seconds, 1};
      ASSERT_EQ(dates.iso8601(instant), formatISO8601(instant)) << zone;
      ASSERT_EQ(dates.localMinute(instant),
                text::replacingAll(LKDateOnly::localMinute(instant), "T", " "))
          << zone << " " << seconds;
    }
    // Every quarter of an hour of the day on which the clocks go forward.
    for (int64_t seconds = 1'774'742'400; seconds < 1'774'828'800; seconds += 900) {
      ASSERT_EQ(dates.localMinute({seconds, 0}),
                text::replacingAll(LKDateOnly::localMinute({seconds, 0}), "T", " "));
    }
  }
  useZone("UTC");
}

struct ColumnCase {
  const char* name;
  size_t columns;
  std::vector<TextColumns::Row> rows;
  const char* shown;
};

class Columns : public testing::TestWithParam<ColumnCase> {};

TEST_P(Columns, FitATerminal) {
  TextColumns list;
  for (const TextColumns::Row& row : GetParam().rows) list.add(row);
  const Terminal terminal{.columns = GetParam().columns, .styled = true};
  static const Pattern styles("\x1b\\[[0-9;]*m");
  const std::string shown = styles.replacingAll(list.text(terminal), "");
  EXPECT_EQ(shown, GetParam().shown);
  for (const std::string_view line : text::split(shown, '\n')) {
    EXPECT_LE(displayWidth(line), GetParam().columns) << line;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Widths, Columns,
    testing::Values(
        ColumnCase{"aligned", 40, {{{"a"}, {"x"}}, {{"long"}, {"y"}}}, "a     x\nlong  y"},
        ColumnCase{"an_empty_cell_keeps_its_place",
                   40,
                   {{{"a"}, {""}, {"z"}}, {{"b"}, {"y"}, {"w"}}},
                   "a     z\nb  y  w"},
        ColumnCase{"nothing_behind_the_last_text", 40, {{{"a"}, {""}}, {{"b"}, {"y"}}}, "a\nb  y"},
        ColumnCase{"the_widest_gives_way", 12, {{{"a long title"}, {"date"}}}, "a lon…  date"},
        ColumnCase{"wide_characters", 12, {{{"日本語の題"}, {"date"}}}, "日本…   date"},
        ColumnCase{"combining_marks_take_no_column",
                   12,
                   {{{"e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301"}, {"date"}}},
                   "e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301  date"},
        ColumnCase{"controls_never_reach_the_terminal", 40, {{{"a\x1b[2Jb\nc\u009B"}}}, "a[2Jbc"}),
    [](const auto& row) { return row.param.name; });

TEST(Bytes, ReadAsPeopleSayThem) {
  for (const auto& [count, text] :
       std::vector<std::pair<uint64_t, std::string>>{{0, "0 bytes"},
                                                     {1, "1 byte"},
                                                     {999, "999 bytes"},
                                                     {1000, "1.0 KB"},
                                                     {999'949, "999.9 KB"},
                                                     {999'950, "1.0 MB"},
                                                     {3'400'000'000, "3.4 GB"}}) {
    EXPECT_EQ(AttachmentScanner::formatBytes(count), text);
  }
}

}  // namespace
}  // namespace lk
