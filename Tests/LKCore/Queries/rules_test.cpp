// What every field and operator of a rule means.

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "LKCore/Queries/LKQueryExecutor.h"

namespace lk {
namespace {

using Field = LKQueryRule::Field;
using Operator = LKQueryRule::Operator;

// Zones whose clocks change on different days, written out so that no table of zones is needed.
constexpr const char* kZones[] = {"EST5EDT,M3.2.0,M11.1.0", "NZST-12NZDT,M9.5.0,M4.1.0/3"};

class Rules : public testing::Test {
 protected:
  ~Rules() override { setZone("UTC"); }

  static void setZone(const char* zone) {
    setenv("TZ", zone, 1);
    tzset();
  }
  // "2026-03-20T17:00" on the clocks of the zone.
  static Instant at(const char* minute) {
    return LKDateOnly::machineFormatter("yyyy-MM-dd'T'HH:mm")->date(minute).value();
  }
};

TEST_F(Rules, CompareDueDatesWithTheLocalCalendar) {
  const struct {
    const char* name;
    const char* now;
    const char* due;
    Operator op;
    const char* value;
    bool isMet;
  } rows[] = {
      {"late at five", "2026-03-20T17:00", "2026-03-20", Operator::isOverdue, "", true},
      {"not before five", "2026-03-20T16:59", "2026-03-20", Operator::isOverdue, "", false},
      {"late the day after", "2026-03-21T00:00", "2026-03-20", Operator::isOverdue, "", true},
      {"five as the clocks go on", "2026-03-08T17:00", "2026-03-08", Operator::isOverdue, "", true},
      {"and a minute earlier", "2026-03-08T16:59", "2026-03-08", Operator::isOverdue, "", false},
      {"five as they go back", "2026-04-05T16:59", "2026-04-05", Operator::isOverdue, "", false},
      {"leap day", "2028-02-29T17:00", "2028-02-29", Operator::isOverdue, "", true},
      {"eve of it", "2028-02-28T23:59", "2028-02-29", Operator::isOverdue, "", false},
      {"today from midnight", "2026-03-08T00:00", "2026-03-08", Operator::isToday, "", true},
      {"today until midnight", "2026-03-08T23:59", "2026-03-08", Operator::isToday, "", true},
      {"no longer today", "2026-03-09T00:00", "2026-03-08", Operator::isToday, "", false},
      {"week from today", "2026-03-05T23:59", "2026-03-05", Operator::isThisWeek, "", true},
      {"its last day", "2026-03-05T23:59", "2026-03-11", Operator::isThisWeek, "", true},
      {"behind it", "2026-03-05T00:00", "2026-03-12", Operator::isThisWeek, "", false},
      {"before it", "2026-03-05T00:00", "2026-03-04", Operator::isThisWeek, "", false},
      {"week with a leap day", "2028-02-23T09:00", "2028-02-29", Operator::isThisWeek, "", true},
      {"and behind it", "2028-02-23T09:00", "2028-03-01", Operator::isThisWeek, "", false},
      {"next week", "2026-03-05T23:59", "2026-03-12", Operator::isNextWeek, "", true},
      {"its end", "2026-03-05T00:00", "2026-03-18", Operator::isNextWeek, "", true},
      {"behind its end", "2026-03-05T00:00", "2026-03-19", Operator::isNextWeek, "", false},
      {"still this week", "2026-03-05T00:00", "2026-03-11", Operator::isNextWeek, "", false},
      {"in days", "2028-02-23T09:00", "2028-02-29", Operator::beforeDaysFromToday, " 7 ", true},
      {"at the days", "2028-02-23T09:00", "2028-03-01", Operator::beforeDaysFromToday, "7", false},
      {"seven by itself", "2028-02-23T09:00", "2028-02-29", Operator::beforeDaysFromToday, "",
       true},
      {"of no number", "2028-02-23T09:00", "2028-03-01", Operator::beforeDaysFromToday, "x", false},
      {"days ago", "2028-03-02T09:00", "2028-02-29", Operator::beforeDaysFromToday, "-1", true},
      {"endless", "2026-03-05T09:00", "9999-12-31", Operator::beforeDaysFromToday, "2147483647",
       true},
      {"before a day", "2026-03-05T09:00", "2028-02-28", Operator::before, "2028-02-29", true},
      {"not on it", "2026-03-05T09:00", "2028-02-29", Operator::before, "2028-02-29", false},
      {"no such day", "2026-03-05T09:00", "2028-02-28", Operator::before, "2028-02-30", false},
      {"after a day", "2026-03-05T09:00", "2028-03-01", Operator::after, "2028-02-29", true},
      {"not the day", "2026-03-05T09:00", "2028-02-29", Operator::after, "2028-02-29", false},
      {"after no day", "2026-03-05T09:00", "2028-03-01", Operator::after, "soon", false},
      {"begun within", "2026-03-20T12:00", "2026-03-20", Operator::withinLastDays, "1", true},
      {"begun before", "2026-03-20T12:00", "2026-03-19", Operator::withinLastDays, "1", false},
      {"to the moment", "2026-03-20T00:00", "2026-03-19", Operator::withinLastDays, "1", true},
      {"yet to come", "2026-03-20T12:00", "2026-03-21", Operator::withinLastDays, "1", false},
      {"a short day ago", "2026-03-09T00:30", "2026-03-08", Operator::withinLastDays, "1", false},
      {"seven days", "2026-03-20T12:00", "2026-03-14", Operator::withinLastDays, "", true},
      {"all time", "2026-03-20T12:00", "1999-01-01", Operator::withinLastDays, "2147483647", true},
      {"has a date", "2026-03-20T12:00", "2026-03-20", Operator::isNone, "", false},
  };
  for (const char* zone : kZones) {
    setZone(zone);
    for (const auto& row : rows) {
      LKTask task;
      task.dateDue = LKDateOnly::parse(row.due);
      const LKQueryRule rule = {Field::taskDueDate, row.op, row.value};
      EXPECT_EQ(LKQueryExecutor::matchesTaskRule(rule, task, at(row.now)), row.isMet)
          << row.name << " in " << zone;
    }
  }
}

TEST_F(Rules, CountNoteDatesFromTheMomentAndTheDay) {
  const struct {
    const char* name;
    const char* now;
    const char* date;
    Operator op;
    const char* value;
    bool isMet;
  } rows[] = {
      {"to the minute", "2026-03-09T12:00", "2026-03-08T12:00", Operator::withinLastDays, "1",
       true},
      {"a minute late", "2026-03-09T12:00", "2026-03-08T11:59", Operator::withinLastDays, "1",
       false},
      {"seven", "2028-03-01T12:00", "2028-02-23T12:00", Operator::withinLastDays, "soon", true},
      {"and no more", "2028-03-01T12:00", "2028-02-23T11:59", Operator::withinLastDays, "", false},
      {"last minute before", "2028-03-01T12:00", "2028-02-28T23:59", Operator::before, "2028-02-29",
       true},
      {"its midnight", "2028-03-01T12:00", "2028-02-29T00:00", Operator::before, "2028-02-29",
       false},
      {"its last minute", "2028-03-01T12:00", "2028-02-29T23:59", Operator::after, "2028-02-29",
       false},
      {"the next midnight", "2028-03-01T12:00", "2028-03-01T00:00", Operator::after, "2028-02-29",
       true},
      {"no day", "2028-03-01T12:00", "2028-03-01T00:00", Operator::after, "29/02/2028", false},
  };
  for (const char* zone : kZones) {
    setZone(zone);
    for (const auto& row : rows) {
      LKNote note;
      note.modifiedDate = at(row.date);
      LKSavedQuery query;
      query.rules = {{Field::dateModified, row.op, row.value}};
      EXPECT_EQ(LKQueryExecutor::matches(note, query, at(row.now)), row.isMet)
          << row.name << " in " << zone;
      std::swap(note.modifiedDate, note.creationDate);
      query.rules[0].field = Field::dateCreated;
      EXPECT_EQ(LKQueryExecutor::matches(note, query, at(row.now)), row.isMet)
          << row.name << ", created, in " << zone;
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
  const struct {
    Field field;
    Operator op;
    const char* value;
    bool isMet;
  } rows[] = {
      {Field::tag, Operator::is, "Work/Cafe\u0301", true},
      {Field::tag, Operator::is, "work/caf\u00E9", false},
      {Field::tag, Operator::is, "Work", false},
      {Field::tag, Operator::isNot, "Work", true},
      {Field::tag, Operator::isUnder, "Work", true},
      {Field::tag, Operator::isUnder, "Work/Cafe\u0301", true},
      {Field::tag, Operator::isUnder, "Wor", false},
      {Field::tag, Operator::isUnder, "", false},
      {Field::tag, Operator::notUnder, "Work", false},
      {Field::content, Operator::contains, "beans AT", true},
      {Field::content, Operator::contains, "cafe", false},
      {Field::content, Operator::doesNotContain, "peas", true},
      {Field::title, Operator::contains, "n pl", true},
      {Field::title, Operator::doesNotContain, "PLAN", false},
      {Field::isFavourite, Operator::isTrue, "", true},
      {Field::hasTasks, Operator::isTrue, "", true},
      {Field::isDailyNote, Operator::isFalse, "", true},
      {Field::isTrashed, Operator::isTrue, "", false},
      {Field::isArchived, Operator::isTrue, "", true},
      {Field::size, Operator::greaterThan, "1.5kb", false},
      {Field::size, Operator::greaterThan, "1535", true},
      {Field::size, Operator::lessThan, " 2 KB ", true},
      {Field::taskPriority, Operator::is, "2", true},
      {Field::taskPriority, Operator::is, "high", true},  // no number counts as 0, as of the other
      {Field::taskPriority, Operator::is, "3", false},
      {Field::taskPriority, Operator::isNot, "2", true},
      {Field::taskCompletion, Operator::isTrue, "", true},
      {Field::taskCompletion, Operator::isFalse, "", true},
      {Field::taskProject, Operator::is, "acme/SITE", true},
      {Field::taskProject, Operator::is, "acme", false},
      {Field::taskProject, Operator::contains, "me/s", true},
      {Field::taskProject, Operator::isUnder, "ACME", true},
      {Field::taskProject, Operator::isUnder, "acm", false},
      {Field::taskProject, Operator::isNone, "", true},
      {Field::taskContext, Operator::is, "Phone", true},
      {Field::taskContext, Operator::is, "desk", false},
      {Field::taskContext, Operator::isNone, "", true},
      {Field::taskDueDate, Operator::isNone, "", true},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(isMet({row.field, row.op, row.value}), row.isMet)
        << fieldText(row.field) << " " << operatorText(row.op) << " " << row.value;
  }
  for (const Operator no : {Operator::isNot, Operator::doesNotContain, Operator::notUnder}) {
    EXPECT_TRUE(LKQueryExecutor::matchesTaskRule({Field::taskProject, no, "acme"}, bare))
        << operatorText(no) << " for a task without a project";
  }
}

TEST_F(NoteRules, AreNeverMetWhereTheOperatorHasNoMeaning) {
  const std::set<Operator> flag = {Operator::isTrue, Operator::isFalse};
  const std::set<Operator> text = {Operator::contains, Operator::doesNotContain};
  const std::set<Operator> date = {Operator::withinLastDays, Operator::before, Operator::after};
  const std::set<Operator> tags = {Operator::is, Operator::isNot, Operator::isUnder,
                                   Operator::notUnder};
  std::set<Operator> due = date;
  due.insert({Operator::isOverdue, Operator::isToday, Operator::isThisWeek, Operator::isNextWeek,
              Operator::beforeDaysFromToday, Operator::isNone});
  std::set<Operator> project = tags;
  project.insert({Operator::contains, Operator::doesNotContain, Operator::isNone});
  const std::map<Field, std::set<Operator>> meant = {
      {Field::tag, tags},
      {Field::content, text},
      {Field::title, text},
      {Field::dateModified, date},
      {Field::dateCreated, date},
      {Field::isFavourite, flag},
      {Field::hasTasks, flag},
      {Field::isDailyNote, flag},
      {Field::isTrashed, flag},
      {Field::isArchived, flag},
      {Field::size, {Operator::greaterThan, Operator::lessThan}},
      {Field::taskDueDate, due},
      {Field::taskPriority, {Operator::is, Operator::isNot}},
      {Field::taskCompletion, flag},
      {Field::taskProject, project},
      {Field::taskContext, {Operator::is, Operator::isNot, Operator::isNone}}};
  for (int field = 0; field <= static_cast<int>(Field::taskContext); ++field) {
    for (int op = 0; op <= static_cast<int>(Operator::isNone); ++op) {
      const LKQueryRule rule = {static_cast<Field>(field), static_cast<Operator>(op), "2026-03-20"};
      if (meant.at(rule.field).contains(rule.op)) continue;
      EXPECT_FALSE(isMet(rule)) << fieldText(rule.field) << " " << operatorText(rule.op);
    }
  }
}

TEST_F(NoteRules, AreJoinedByAllOrAnyBesideOneTask) {
  const LKQueryRule yes = {Field::isFavourite, Operator::isTrue, ""};
  const LKQueryRule no = {Field::isFavourite, Operator::isFalse, ""};
  const LKTaskRuleGroup oneTask = {
      {{Field::taskCompletion, Operator::isFalse, ""}, {Field::taskPriority, Operator::is, "2"}}};
  const LKTaskRuleGroup twoTasks = {
      {{Field::taskCompletion, Operator::isTrue, ""}, {Field::taskPriority, Operator::is, "2"}}};
  const LKTaskRuleGroup noRules = {};
  const struct {
    const char* name;
    std::vector<LKQueryRule> rules;
    std::optional<LKTaskRuleGroup> group;
    bool all;
    bool any;
  } rows[] = {
      {"nothing asked", {}, {}, true, false},
      {"an empty group", {}, noRules, true, false},
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
  const std::map<std::string, int64_t> sizes = {
      {"1.5kb", 1536}, {"2 MB", 2'097'152}, {"1g", 1'073'741'824},
      {"7b", 7},       {"10", 10},          {"1.9", 1},
      {"", 0},         {"kb", 0},           {"inf", 0},
      {"1e999", 0},    {"0x10", 0},         {"-2k", -2048},
      {"+3", 3},       {"1k5", 0},          {"1e300gb", 9'000'000'000'000'000'000}};
  for (const auto& [value, bytes] : sizes) {
    EXPECT_EQ(LKQueryExecutor::parseSizeBytes(value), bytes) << value;
  }
  const auto isBlank = [](Field field, Operator op, const char* value) {
    return LKQueryRule{field, op, value}.isBlank();
  };
  EXPECT_TRUE(isBlank(Field::tag, Operator::is, " \t"));
  EXPECT_FALSE(isBlank(Field::tag, Operator::is, "a"));
  EXPECT_FALSE(isBlank(Field::taskPriority, Operator::is, ""));
  EXPECT_FALSE(isBlank(Field::taskDueDate, Operator::isToday, ""));
  EXPECT_FALSE(isBlank(Field::dateModified, Operator::withinLastDays, ""));
}

}  // namespace
}  // namespace lk
