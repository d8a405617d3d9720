#pragma once

// How many tasks each project or context has.

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Time.h"
#include "LKCore/DataModel/Entities.h"
#include "LarkspireCLI/Support/Terminal.h"

namespace lk {

struct TaskGroup {
  std::string name;
  size_t notStarted = 0;
  size_t inProgress = 0;
  size_t done = 0;
  size_t cancelled = 0;
  size_t overdue = 0;  // of the first two
  size_t total = 0;

  bool operator==(const TaskGroup&) const = default;
};

// The groups that `namesOf` puts tasks in, in the order of lists for people. Names that differ in
// case alone are one group, called as it is met first.
std::vector<TaskGroup> taskGroups(
    const std::vector<LKTask*>& tasks,
    const std::function<std::vector<std::string>(const LKTask& task)>& namesOf, Instant now);

// A line each, or `emptyMessage`; as JSON the array of rows, with the name under `nameKey`.
std::string formatTaskGroups(const std::vector<TaskGroup>& groups, const std::string& nameKey,
                             const std::string& emptyMessage, bool asJSON,
                             const Terminal& terminal = {});

}  // namespace lk
