#include "LKCore/NoteRepository/LKNoteFilters.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "LKCore/Base/Text.h"
#include "LKCore/Tasks/LKTaskDue.h"
#include "LKCore/Tasks/TaskStatus.h"

namespace lk::LKNoteFilters {

namespace {

constexpr int kDaysPerWeek = 7;
constexpr int kDaysPerMonth = 30;

bool isOpen(const LKTask& task) {
  const auto status = taskStatus(task.statusRaw);
  return status && !isComplete(*status);
}

bool isDone(const LKTask& task) {
  const auto status = taskStatus(task.statusRaw);
  return status && isComplete(*status);
}

bool isLive(const LKNote& note) {
  return !note.isTrashed && !note.isArchived();
}

bool isOfLiveNote(const LKTask& task) {
  return task.note == nullptr || isLive(*task.note);
}

bool isDueBetween(const LKTask& task, Day first, Day behindLast) {
  return task.dateDue && first <= *task.dateDue && *task.dateDue < behindLast;
}

bool passes(const LKTask& task, TaskPredicate by, Instant now, Day today, Day nextWeek) {
  switch (by) {
    case TaskPredicate::all:
      return true;
    case TaskPredicate::open:
      return isOpen(task);
    case TaskPredicate::overdue:
      return isOverdue(task, now);
    case TaskPredicate::dueToday:
      return isOpen(task) && task.dateDue == today;
    case TaskPredicate::dueThisWeek:
      return isOpen(task) && task.dateDue && *task.dateDue < nextWeek;
    case TaskPredicate::done:
      return isDone(task);
  }
  return false;
}

bool isInWindow(const LKTask& task, const DueWindow& window, Instant now, Day today) {
  switch (window.kind) {
    case DueWindow::Kind::overdue:
      return isOverdue(task, now);
    case DueWindow::Kind::today:
      return isDueBetween(task, today, today.adding(1));
    case DueWindow::Kind::tomorrow:
      return isDueBetween(task, today.adding(1), today.adding(2));
    case DueWindow::Kind::nextDays:
      return isDueBetween(task, today, today.adding(window.days));
  }
  return false;
}

}  // namespace

bool hasTag(const LKNote& note, std::string_view named, TagMatch match) {
  const std::string key = text::caseInsensitiveKey(named);
  return std::ranges::any_of(note.tags, [&](const LKTag* tag) {
    const std::string tagKey = text::caseInsensitiveKey(tag->text);
    if (!tagKey.starts_with(key)) return false;
    return tagKey.size() == key.size() || (match == TagMatch::subtree && tagKey[key.size()] == '/');
  });
}

bool matches(const LKNote& note, std::string_view query) {
  return text::containsIgnoringCase(note.title, query) ||
         text::containsIgnoringCase(note.text, query);
}

bool isOverdue(const LKTask& task, Instant now) {
  return isOpen(task) && task.dateDue && LKTaskDue::isOverdue(*task.dateDue, now);
}

std::optional<Instant> cutoffDate(RecencyWindow window, Instant now) {
  switch (window) {
    case RecencyWindow::any:
      return std::nullopt;
    case RecencyWindow::today:
      return Day::local(now).localStart();
    case RecencyWindow::last7Days:
      return now.addingLocalDays(-kDaysPerWeek);
    case RecencyWindow::last30Days:
      return now.addingLocalDays(-kDaysPerMonth);
  }
  return std::nullopt;
}

std::vector<LKTask*> filter(const std::vector<LKTask*>& tasks, TaskPredicate by, Instant now) {
  const Day today = Day::local(now);
  const Day nextWeek = today.adding(kDaysPerWeek);
  std::vector<LKTask*> passing;
  std::ranges::copy_if(tasks, std::back_inserter(passing), [&](const LKTask* task) {
    return isOfLiveNote(*task) && passes(*task, by, now, today, nextWeek);
  });
  return passing;
}

std::vector<LKTask*> tasks(const std::vector<LKTask*>& tasks, const DueWindow& dueIn, Instant now) {
  const Day today = Day::local(now);
  std::vector<LKTask*> due;
  std::ranges::copy_if(tasks, std::back_inserter(due), [&](const LKTask* task) {
    return isOfLiveNote(*task) && isOpen(*task) && isInWindow(*task, dueIn, now, today);
  });
  std::ranges::stable_sort(due, {}, [](const LKTask* task) { return *task->dateDue; });
  return due;
}

bool hasLiveOverdueTasks(const LKNote& note, Instant now) {
  return isLive(note) &&
         std::ranges::any_of(note.tasks, [&](const LKTask* task) { return isOverdue(*task, now); });
}

}  // namespace lk::LKNoteFilters
