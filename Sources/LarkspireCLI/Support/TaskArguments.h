#pragma once

// What is given to the task commands, read and judged before anything is written. Everything here
// throws CLIError (general) that shows the value.

#include <optional>
#include <string>
#include <vector>

#include "LKCore/Base/Time.h"
#include "LKCore/Tasks/TaskStatus.h"

namespace lk {

class CacheReader;
struct GlobalOptions;

// "not-started", "in-progress", "done" or "cancelled", in any case, or a usual word for one of them.
TaskStatus parseStatus(const std::string& value);

// "high", "medium" or "low", given in any case.
std::string priorityArgument(const std::string& value);

Day dueArgument(const std::string& value);

// A name that can stand on a task line.
std::string projectArgument(const std::string& value);

// Normalised contexts that can stand on a task line, at least one.
std::vector<std::string> contextArguments(const std::vector<std::string>& values);

// Says on standard error, unless the run is quiet, when one of the names is unknown so far and
// nearly like one that is known. Asks for an index only when there is a name.
void warnOfNearNames(const GlobalOptions& options, CacheReader& cache,
                     const std::vector<std::string>& contexts,
                     const std::optional<std::string>& project);

}  // namespace lk
