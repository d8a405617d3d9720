#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Time.h"
#include "LKCore/Base/UUID.h"

namespace lk {

// What a task line says about its task, apart from its words.
//
//     LKTaskDiscreteState::parse("\t- [/] Order seeds due:2026-03-20 priority:high")
//         == LKTaskDiscreteState{1, Day{2026, 3, 20}, 3}
struct LKTaskDiscreteState {
  int statusRaw = 0;  // TaskStatus
  std::optional<Day> dueDate;
  int priority = 0;  // LKTaskPriority

  bool operator==(const LKTaskDiscreteState&) const = default;

  // Nothing when the line is no task. Also reads "* [ ] ", which nobody here writes. The first
  // `due:` with the shape of a date counts, and is no date when there is no such day; of
  // `priority:` the first counts.
  static std::optional<LKTaskDiscreteState> parse(std::string_view line);
};

// One task changed, for whoever shows it.
struct LKTaskLiveChange {
  // Whether a command changed the task or someone types in its line.
  enum class Origin { semantic, typing };

  UUID taskID;
  std::optional<UUID> noteID;                        // nothing for a file without an id
  LKTaskDiscreteState state;                         // as it is now
  std::optional<std::string> text;                   // when the words changed
  std::optional<std::vector<std::string>> comments;  // when they changed: all of them, in order
  Origin origin = Origin::semantic;

  bool operator==(const LKTaskLiveChange&) const = default;
};

// The name of the notice (Base/Notices.h) that tasks changed.
inline constexpr const char* lkTasksChanged = "com.larkspire.tasksChanged";

}  // namespace lk
