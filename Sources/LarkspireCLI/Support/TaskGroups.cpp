#include "LarkspireCLI/Support/TaskGroups.h"

#include <algorithm>
#include <map>
#include <utility>

#include "LKCore/Base/Json.h"
#include "LKCore/Base/Text.h"
#include "LKCore/NoteRepository/LKNoteFilters.h"
#include "LKCore/Tasks/TaskStatus.h"
#include "LarkspireCLI/Support/OutputFormatter.h"
#include "LarkspireCLI/Support/TextColumns.h"

namespace lk {

namespace {

size_t& columnOf(TaskGroup& group, TaskStatus status) {
  switch (status) {
    case TaskStatus::notStarted:
      return group.notStarted;
    case TaskStatus::inProgress:
      return group.inProgress;
    case TaskStatus::done:
      return group.done;
    case TaskStatus::cancelled:
      return group.cancelled;
  }
  return group.notStarted;
}

void countTask(TaskGroup& group, const LKTask& task, Instant now) {
  ++columnOf(group, taskStatus(task.statusRaw).value_or(TaskStatus::notStarted));
  ++group.total;
  if (LKNoteFilters::isOverdue(task, now)) ++group.overdue;
}

std::string countIfAny(size_t count, const char* noun) {
  return count == 0 ? "" : std::to_string(count) + " " + noun;
}

Json groupJson(const TaskGroup& group, const std::string& nameKey) {
  return {{nameKey, group.name}, {"notStarted", group.notStarted}, {"inProgress", group.inProgress},
          {"done", group.done},  {"cancelled", group.cancelled},   {"overdue", group.overdue},
          {"total", group.total}};
}

}  // namespace

std::vector<TaskGroup> taskGroups(
    const std::vector<LKTask*>& tasks,
    const std::function<std::vector<std::string>(const LKTask& task)>& namesOf, Instant now) {
  std::map<std::string, TaskGroup> byKey;
  for (const LKTask* task : tasks) {
    for (const std::string& name : namesOf(*task)) {
      TaskGroup& group = byKey[text::caseInsensitiveKey(name)];
      if (group.name.empty()) group.name = name;
      countTask(group, *task, now);
    }
  }
  std::vector<TaskGroup> groups;
  for (auto& [key, group] : byKey) groups.push_back(std::move(group));
  std::ranges::stable_sort(groups, [](const TaskGroup& a, const TaskGroup& b) {
    return text::compareLocalized(a.name, b.name) < 0;
  });
  return groups;
}

std::string formatTaskGroups(const std::vector<TaskGroup>& groups, const std::string& nameKey,
                             const std::string& emptyMessage, bool asJSON,
                             const Terminal& terminal) {
  if (asJSON) {
    Json rows = Json::array();
    for (const TaskGroup& group : groups) rows.push_back(groupJson(group, nameKey));
    return OutputFormatter::jsonEncode(rows);
  }
  if (groups.empty()) return emptyMessage;
  TextColumns list;
  for (const TaskGroup& group : groups) {
    list.add({{group.name, TextStyle::bold},
              {std::to_string(group.total) + " tasks"},
              {countIfAny(group.inProgress, "in-progress")},
              {countIfAny(group.overdue, "overdue"), TextStyle::alert}});
  }
  return list.text(terminal);
}

}  // namespace lk
