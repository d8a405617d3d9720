// What every field and operator of a rule means.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/Queries/LKQueryExecutor.h"

namespace lk {
namespace {

using Field = LKQueryRule::Field;
using Operator = LKQueryRule::Operator;

// Zones whose clocks change on different days, written out so that no table of zones is needed.
constexpr const char* kZones[] = {"EST5EDT,M3.2.0,M11.1.0", "NZST-12NZDT,M9.5.0,M4.1.0/3"};

// "tag isUnder work/site": field, operator and the rest of the text as the value.
LKQueryRule rule(std::string_view words) {
  const size_t first = words.find(' ');
  const size_t second = std::min(words.find(' ', first + 1), words.size());
  return {parseField(words.substr(0, first)).value(),
          parseOperator(words.substr(first + 1, second - first - 1)).value(),
          std::string(words.substr(std::min(second + 1, words.size())))};
}

class Rules : public testing::Test {
 protected:
  ~Rules() override { setZone("UTC"); }

  static void setZone(const char* zone) {
    setenv("TZ", zone, 1);
    tzset();
  }
  // "2026-03-20T17:00" on the clocks of the zone.
  static Instant at(std::string_view minute) {
    return LKDateOnly::machineFormatter("yyyy-MM-dd'T'HH:mm")->date(minute).value();
  }
};

// A rule at a moment, and dates that meet it and that do not.
struct DateRow {
  const char* rule;
  const char* now;
  const char* met;
  const char* unmet;
};

TEST_F(Rules, CompareDueDatesWithTheLocalCalendar) {
  const DateRow rows[] = {
      {"isOverdue", "2026-03-20T16:59", "2026-03-19", "2026-03-20"},
      {"isOverdue", "2026-03-20T17:00", "2026-03-20", "2026-03-21"},
      {"isOverdue", "2026-03-21T00:00", "2026-03-20", "2026-03-21"},
      {"isOverdue", "2026-03-08T17:00", "2026-03-08", "2026-03-09"},  // the clocks go on
      {"isOverdue", "2026-03-08T16:59", "2026-03-07", "2026-03-08"},
      {"isOverdue", "2026-04-05T16:59", "2026-04-04", "2026-04-05"},  // or back
      {"isOverdue", "2028-02-29T17:00", "2028-02-28 2028-02-29", "2028-03-01"},
      {"isToday", "2026-03-08T00:00", "2026-03-08", "2026-03-07 2026-03-09"},
      {"isToday", "2026-03-08T23:59", "2026-03-08", "2026-03-07 2026-03-09"},
      {"isThisWeek", "2026-03-05T23:59", "2026-03-05 2026-03-11", "2026-03-04 2026-03-12"},
      {"isThisWeek", "2028-02-23T00:00", "2028-02-29", "2028-03-01"},
      {"isNextWeek", "2026-03-05T23:59", "2026-03-12 2026-03-18", "2026-03-11 2026-03-19"},
      {"isNextWeek", "2028-02-23T00:00", "2028-03-01 2028-03-07", "2028-02-29 2028-03-08"},
      {"beforeDaysFromToday  7 ", "2028-02-23T09:00", "1999-01-01 2028-02-29", "2028-03-01"},
      {"beforeDaysFromToday", "2028-02-23T23:59", "2028-02-29", "2028-03-01"},
      {"beforeDaysFromToday soon", "2028-02-23T00:00", "2028-02-29", "2028-03-01"},
      {"beforeDaysFromToday -1", "2028-03-02T09:00", "2028-02-29", "2028-03-01"},
      {"beforeDaysFromToday 2147483647", "2026-03-05T09:00", "9999-12-31", ""},
      {"before 2028-02-29", "2026-03-05T09:00", "2028-02-28", "2028-02-29"},
      {"before 2028-02-30", "2026-03-05T09:00", "", "1999-01-01"},
      {"after 2028-02-29", "2026-03-05T09:00", "2028-03-01", "2028-02-29"},
      {"after soon", "2026-03-05T09:00", "", "9999-12-31"},
      {"withinLastDays 1", "2026-03-20T12:00", "2026-03-20", "2026-03-19 2026-03-21"},
      {"withinLastDays 1", "2026-03-20T00:00", "2026-03-19 2026-03-20", "2026-03-18"},
      {"withinLastDays 1", "2026-03-09T00:30", "2026-03-09", "2026-03-08"},  // a day of 23 hours
      {"withinLastDays", "2026-03-20T12:00", "2026-03-14", "2026-03-13"},
      {"withinLastDays 2147483647", "2026-03-20T12:00", "1999-01-01", "2026-03-21"},
      {"isNone", "2026-03-20T12:00", "", "2026-03-20"},
  };
  for (const char* zone : kZones) {
    setZone(zone);
    for (const DateRow& row : rows) {
      for (const bool isMet : {true, false}) {
        for (const std::string_view day : text::split(isMet ? row.met : row.unmet, ' ')) {
          LKTask task;
          task.dateDue = LKDateOnly::parse(day);
          if (!task.dateDue) continue;  // an empty list
          EXPECT_EQ(LKQueryExecutor::matchesTaskRule(rule(std::string("taskDueDate ") + row.rule),
                                                     task, at(row.now)),
                    isMet)
              << row.rule << " " << day << " at " << row.now << " in " << zone;
        }
      }
    }
  }
}

TEST_F(Rules, CountNoteDatesFromTheMomentAndTheDay) {
  const DateRow rows[] = {
      {"withinLastDays 1", "2026-03-09T12:00", "2026-03-08T12:00", "2026-03-08T11:59"},
      {"withinLastDays soon", "2028-03-01T12:00", "2028-02-23T12:00", "2028-02-23T11:59"},
      {"before 2028-02-29", "2028-03-01T12:00", "2028-02-28T23:59", "2028-02-29T00:00"},
      {"after 2028-02-29", "2028-03-01T12:00", "2028-03-01T00:00", "2028-02-29T23:59"},
  };
  for (const char* zone : kZones) {
    setZone(zone);
    for (const DateRow& row : rows) {
      LKSavedQuery modified;
      modified.rules = {rule(std::string("dateModified ") + row.rule)};
      LKSavedQuery created;
      created.rules = {rule(std::string("dateCreated ") + row.rule)};
      LKNote note;
      note.modifiedDate = at(row.met);
      note.creationDate = at(row.unmet);
      EXPECT_TRUE(LKQueryExecutor::matches(note, modified, at(row.now))) << row.rule << zone;
      EXPECT_FALSE(LKQueryExecutor::matches(note, created, at(row.now))) << row.rule << zone;
    }
  }
}

// A note of which something is known for each field.
class NoteRules : public Rules {
 protected:
  NoteRules() {
    note.title = "Garden Plan";
    note.text = "Sow BEANS at the Caf\u00E9";
    note.isFavourite = true;
    note.activeTaskCount = 1;
    note.status = "archived";
    note.size = 1536;
    tag.text = "Work/Caf\u00E9";
    addTag(note, tag);
    task.dateDue = Day{2026, 3, 20};
    task.priority = 2;
    task.project = "Acme/Site";
    task.contexts = {"phone"};
    setNote(task, &note);
    setNote(bare, &note);
    bare.isComplete = true;
  }

  bool isMet(const LKQueryRule& rule) const {
    LKSavedQuery query;
    query.rules = {rule};
    return LKQueryExecutor::matches(note, query, {1'774'000'000, 0});
  }

  LKTag tag;
  LKTask task;
  LKTask bare;  // done, and nothing else
  LKNote note;
};

TEST_F(NoteRules, MeanWhatTheirOperatorsSay) {
  for (const char* met : {"tag is Work/Cafe\u0301",
                          "tag isNot Work",
                          "tag isUnder Work",
                          "tag notUnder Wor",
                          "tag isUnder Work/Cafe\u0301",
                          "content contains beans AT",
                          "content doesNotContain peas",
                          "title contains n pl",
                          "isFavourite isTrue",
                          "hasTasks isTrue",
                          "isDailyNote isFalse",
                          "isTrashed isFalse",
                          "isArchived isTrue",
                          "size greaterThan 1535",
                          "size lessThan  2 KB ",
                          "taskPriority is 2",
                          "taskPriority is high",
                          "taskPriority isNot 2",
                          "taskCompletion isTrue",
                          "taskCompletion isFalse",
                          "taskProject is acme/SITE",
                          "taskProject contains me/s",
                          "taskProject isUnder ACME",
                          "taskProject isNone",
                          "taskProject doesNotContain acme",
                          "taskContext is Phone",
                          "taskContext isNone",
                          "taskContext isNot phone",
                          "taskDueDate isNone"}) {
    EXPECT_TRUE(isMet(rule(met))) << met;
  }
  for (const char* unmet : {"tag is work/caf\u00E9",
                            "tag is Work",
                            "tag isNot Work/Cafe\u0301",
                            "tag isUnder Wor",
                            "tag isUnder",
                            "tag notUnder Work",
                            "content contains cafe",
                            "title doesNotContain PLAN",
                            "isTrashed isTrue",
                            "size greaterThan 1.5kb",
                            "size lessThan 1536b",
                            "taskPriority is 3",
                            "taskProject is acme",
                            "tag contains Work",
                            "content is beans",
                            "size is 1536",
                            "isFavourite is true",
                            "taskDueDate is 2026-03-20",
                            "taskContext contains phone",
                            "taskProject isUnder acm",
                            "taskContext is desk"}) {
    EXPECT_FALSE(isMet(rule(unmet))) << unmet;
  }
}

TEST_F(NoteRules, AreJoinedByAllOrAnyBesideOneTask) {
  const LKQueryRule yes = rule("isFavourite isTrue");
  const LKQueryRule no = rule("isFavourite isFalse");
  const LKTaskRuleGroup oneTask = {{rule("taskCompletion isFalse"), rule("taskPriority is 2")}};
  const LKTaskRuleGroup twoTasks = {{rule("taskCompletion isTrue"), rule("taskPriority is 2")}};
  const struct {
    const char* name;
    std::vector<LKQueryRule> rules;
    std::optional<LKTaskRuleGroup> group;
    bool all;
    bool any;
  } rows[] = {
      {"nothing asked", {}, {}, true, false},
      {"an empty group", {}, LKTaskRuleGroup{}, true, false},
      {"a group alone", {}, oneTask, true, true},
      {"a group of two tasks", {yes}, twoTasks, false, false},
      {"a group and a rule", {no}, oneTask, false, false},
      {"one of two", {no, yes}, {}, false, true},
      {"both", {yes, yes}, oneTask, true, true},
  };
  for (const auto& row : rows) {
    LKSavedQuery query;
    query.rules = row.rules;
    query.taskGroup = row.group;
    EXPECT_EQ(LKQueryExecutor::matches(note, query), row.all) << row.name;
    query.combiner = LKSavedQuery::Combiner::any;
    EXPECT_EQ(LKQueryExecutor::matches(note, query), row.any) << row.name;
  }
}

TEST(RuleValues, AreReadTolerantly) {
  const std::map<std::string, int64_t> sizes = {{"1.5kb", 1536},
                                                {"2 MB", 2'097'152},
                                                {"1g", 1'073'741'824},
                                                {"7b", 7},
                                                {"1.9", 1},
                                                {"", 0},
                                                {"kb", 0},
                                                {"inf", 0},
                                                {"1e999", 0},
                                                {"0x10", 0},
                                                {"+3", 3},
                                                {"1k5", 0},
                                                {"1e300gb", 9'000'000'000'000'000'000}};
  for (const auto& [value, bytes] : sizes) {
    EXPECT_EQ(LKQueryExecutor::parseSizeBytes(value), bytes) << value;
  }
  EXPECT_TRUE(rule("tag is  \t").isBlank());
  for (const char* filled :
       {"tag is a", "taskPriority is", "taskDueDate isToday", "dateModified withinLastDays"}) {
    EXPECT_FALSE(rule(filled).isBlank()) << filled;
  }
}

}  // namespace
}  // namespace lk
