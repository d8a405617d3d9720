#include "LKCore/NoteRepository/LKNoteFilters.h"

#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <vector>

#include "LKCore/Tasks/TaskStatus.h"

namespace lk {
namespace {

using LKNoteFilters::DueWindow;
using LKNoteFilters::RecencyWindow;
using LKNoteFilters::TagMatch;
using LKNoteFilters::TaskPredicate;
using Names = std::vector<std::string>;

constexpr Day kToday = {2026, 3, 18};
constexpr int64_t kHour = 3600;

Instant todayAt(int64_t hour) {
  return {kToday.localStart().seconds + hour * kHour, 0};
}

// Tasks named after what is special about them, due so many days from today.
class FilteredTasks : public testing::Test {
 protected:
  FilteredTasks() {
    trashed.isTrashed = true;
    archived.status = "archived";
    add("last week", TaskStatus::notStarted, -7);
    add("today", TaskStatus::notStarted, 0);
    add("tomorrow", TaskStatus::inProgress, 1);
    add("yesterday, done", TaskStatus::done, -1);
    add("yesterday", TaskStatus::inProgress, -1);
    add("in a week", TaskStatus::notStarted, 7);
    add("some day", TaskStatus::notStarted, std::nullopt);
    add("today, cancelled", TaskStatus::cancelled, 0);
    add("today too", TaskStatus::notStarted, 0);
    add("in the trash", TaskStatus::notStarted, 0, &trashed);
    add("in the archive", TaskStatus::done, -1, &archived);
  }

  void add(const std::string& name, TaskStatus status, std::optional<int> dueIn,
           LKNote* of = nullptr) {
    LKTask& task = rows.emplace_back();
    task.text = name;
    task.statusRaw = static_cast<int>(status);
    if (dueIn) task.dateDue = kToday.adding(*dueIn);
    setNote(task, of == nullptr ? &live : of);
    all.push_back(&task);
  }

  static Names namesOf(const std::vector<LKTask*>& tasks) {
    Names names;
    for (const LKTask* task : tasks) names.push_back(task->text);
    return names;
  }
  Names filtered(TaskPredicate by, int64_t hour = 12) const {
    return namesOf(LKNoteFilters::filter(all, by, todayAt(hour)));
  }
  Names due(DueWindow::Kind kind, int days = 0) const {
    return namesOf(LKNoteFilters::tasks(all, {kind, days}, todayAt(18)));
  }

  LKNote live;
  LKNote trashed;
  LKNote archived;
  std::deque<LKTask> rows;
  std::vector<LKTask*> all;
};

TEST_F(FilteredTasks, PassAsThePredicateSays) {
  EXPECT_EQ(filtered(TaskPredicate::all).size(), 9U);
  EXPECT_EQ(filtered(TaskPredicate::open), (Names{"last week", "today", "tomorrow", "yesterday",
                                                  "in a week", "some day", "today too"}));
  EXPECT_EQ(filtered(TaskPredicate::overdue), (Names{"last week", "yesterday"}));
  EXPECT_EQ(filtered(TaskPredicate::overdue, 18),
            (Names{"last week", "today", "yesterday", "today too"}));
  EXPECT_EQ(filtered(TaskPredicate::dueToday), (Names{"today", "today too"}));
  EXPECT_EQ(filtered(TaskPredicate::dueThisWeek),
            (Names{"last week", "today", "tomorrow", "yesterday", "today too"}));
  EXPECT_EQ(filtered(TaskPredicate::done), (Names{"yesterday, done", "today, cancelled"}));
}

TEST_F(FilteredTasks, AreSortedByTheirDayInAWindow) {
  const Names today = {"today", "today too"};
  EXPECT_EQ(due(DueWindow::Kind::overdue), (Names{"last week", "yesterday", "today", "today too"}));
  EXPECT_EQ(due(DueWindow::Kind::today), today);
  EXPECT_EQ(due(DueWindow::Kind::tomorrow), Names{"tomorrow"});
  EXPECT_EQ(due(DueWindow::Kind::nextDays, 1), today);
  EXPECT_EQ(due(DueWindow::Kind::nextDays, 8),
            (Names{"today", "today too", "tomorrow", "in a week"}));
  EXPECT_EQ(due(DueWindow::Kind::nextDays, 0), Names{});
}

TEST_F(FilteredTasks, AreLateInLiveNotesAlone) {
  EXPECT_TRUE(LKNoteFilters::hasLiveOverdueTasks(live, todayAt(12)));
  EXPECT_FALSE(LKNoteFilters::hasLiveOverdueTasks(live, {0, 0}));
  EXPECT_FALSE(LKNoteFilters::hasLiveOverdueTasks(trashed, todayAt(18)));
  add("late", TaskStatus::notStarted, -1, &archived);
  EXPECT_FALSE(LKNoteFilters::hasLiveOverdueTasks(archived, todayAt(18)));
}

TEST(NoteFilters, MatchTagsAndText) {
  LKTag tag;
  tag.text = "Project/Caf\u00E9";
  LKNote note;
  note.title = "Garden Plan";
  note.text = "Sow BEANS";
  addTag(note, tag);
  const struct {
    const char* named;
    bool exact;
    bool subtree;
  } rows[] = {
      {"project/cafe\u0301", true, true},   {"PROJECT", false, true}, {"proj", false, false},
      {"project/caf", false, false},        {"", false, false},       {"other", false, false},
      {"project/caf\u00E9/x", false, false}};
  for (const auto& row : rows) {
    EXPECT_EQ(LKNoteFilters::hasTag(note, row.named, TagMatch::exact), row.exact) << row.named;
    EXPECT_EQ(LKNoteFilters::hasTag(note, row.named, TagMatch::subtree), row.subtree) << row.named;
  }
  for (const char* query : {"", "plan", "GARDEN P", "w beans"}) {
    EXPECT_TRUE(LKNoteFilters::matches(note, query)) << query;
  }
  EXPECT_FALSE(LKNoteFilters::matches(note, "plan sow"));
}

TEST(NoteFilters, CountDaysBackInTheCalendar) {
  const Instant now = todayAt(12);
  EXPECT_EQ(LKNoteFilters::cutoffDate(RecencyWindow::any, now), std::nullopt);
  EXPECT_EQ(LKNoteFilters::cutoffDate(RecencyWindow::today, now), kToday.localStart());
  const auto week = LKNoteFilters::cutoffDate(RecencyWindow::last7Days, now);
  ASSERT_TRUE(week.has_value());
  EXPECT_EQ(LKDateOnly::localMinute(*week), "2026-03-11T12:00");
  const auto month = LKNoteFilters::cutoffDate(RecencyWindow::last30Days, now);
  ASSERT_TRUE(month.has_value());
  EXPECT_EQ(LKDateOnly::localMinute(*month), "2026-02-16T12:00");
}

}  // namespace
}  // namespace lk
