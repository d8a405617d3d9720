#pragma once

// Where a task stands, and the one character that says so in its line: "- [/] Order seeds".

#include <optional>

namespace lk {

// The integers are what the cache stores.
enum class TaskStatus { notStarted = 0, inProgress = 1, done = 2, cancelled = 3 };

// Nothing outside 0 to 3.
constexpr std::optional<TaskStatus> taskStatus(int raw) {
  if (raw < 0 || raw > 3) return std::nullopt;
  return static_cast<TaskStatus>(raw);
}

// The character between the brackets, as it is written: a space, '/', 'x' or '-'.
constexpr char markOf(TaskStatus status) {
  return " /x-"[static_cast<int>(status)];
}

// Nothing for any other character, also for 'X': the lexers read that as done, nobody writes it.
constexpr std::optional<TaskStatus> taskStatusOfMark(char mark) {
  switch (mark) {
    case ' ':
      return TaskStatus::notStarted;
    case '/':
      return TaskStatus::inProgress;
    case 'x':
      return TaskStatus::done;
    case '-':
      return TaskStatus::cancelled;
    default:
      return std::nullopt;
  }
}

// Done and cancelled tasks need nothing more; the other two are active.
constexpr bool isComplete(TaskStatus status) {
  return status == TaskStatus::done || status == TaskStatus::cancelled;
}

}  // namespace lk
