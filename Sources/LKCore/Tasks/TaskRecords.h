#pragma once

// Tasks as lists and counters show them.

#include <optional>
#include <string>

#include "LKCore/Base/TextRange.h"
#include "LKCore/Base/Time.h"
#include "LKCore/Base/UUID.h"
#include "LKCore/Tasks/TaskStatus.h"

namespace lk {

// Which tasks a list holds: not started or in progress; done or cancelled; active and late
// (LKTaskDue); every one.
enum class TaskFilter { active, completed, overdue, all };

// How many tasks there are of each sort.
struct TaskSummary {
  int total = 0;
  int complete = 0;  // done and cancelled
  int overdue = 0;
  int notStarted = 0;
  int inProgress = 0;
  int done = 0;
  int cancelled = 0;

  bool operator==(const TaskSummary&) const = default;
};

// One task of an open document.
struct TaskDisplayInfo {
  UUID id;
  int paragraphIndex = 0;  // in the document, from 0
  std::string text;
  TaskStatus status = TaskStatus::notStarted;
  std::optional<Day> dueDate;
  std::optional<Day> doneDate;
  int priority = 0;  // LKTaskPriority
  TextRange range;   // of its paragraph in the document, in UTF-16 units

  bool operator==(const TaskDisplayInfo&) const = default;
};

}  // namespace lk
