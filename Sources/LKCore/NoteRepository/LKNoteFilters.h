#pragma once

// The one set of rules for what is tagged, matching, recent, overdue and due, whoever asks. Days
// and hours are those of the current time zone.
//
//     const auto late = LKNoteFilters::filter(tasks, LKNoteFilters::TaskPredicate::overdue, now);

#include <optional>
#include <string_view>
#include <vector>

#include "LKCore/Base/Time.h"
#include "LKCore/DataModel/Entities.h"

namespace lk::LKNoteFilters {

enum class RecencyWindow { any, today, last7Days, last30Days };
enum class TagMatch { exact, subtree };
enum class TaskPredicate { all, open, overdue, dueToday, dueThisWeek, done };

struct DueWindow {
  enum class Kind { nextDays, overdue, today, tomorrow } kind = Kind::nextDays;
  int days = 0;  // of nextDays, today among them
};

// True when the note carries the tag, in any case, or with `subtree` one below it.
bool hasTag(const LKNote& note, std::string_view named, TagMatch match);

// True when the title or the body contains the query, in any case.
bool matches(const LKNote& note, std::string_view query);

// True for a task that is not started or in progress, behind the hour at which it is late
// (LKTaskDue).
bool isOverdue(const LKTask& task, Instant now);

// The moment since which a note counts as recent; nothing when every one does.
std::optional<Instant> cutoffDate(RecencyWindow window, Instant now);

// Those that pass, in their order. A task of a note that is trashed or archived never does.
// `dueThisWeek` is what is due before seven days from today, late ones among it.
std::vector<LKTask*> filter(const std::vector<LKTask*>& tasks, TaskPredicate by, Instant now);

// The open tasks due in the window, by their day, ties in their order. Trash and archive as above.
std::vector<LKTask*> tasks(const std::vector<LKTask*>& tasks, const DueWindow& dueIn, Instant now);

// True for a note outside trash and archive with an overdue task.
bool hasLiveOverdueTasks(const LKNote& note, Instant now);

}  // namespace lk::LKNoteFilters
