#pragma once

// Finding the one task that a command is pointed at, and changing its line in the note's file.
//
//     const TaskSelector selector = makeSelector(text, id);
//     const ResolvedNote note = resolveTaskNote(title, selector, collection, options, cache);
//     const UUID task = transformSelectedTask(note, selector, [](std::string_view line) { ... });
//
// A task that more than one line could be is refused, never guessed. Everything here throws
// CLIError.

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "LKCore/Base/UUID.h"
#include "LKCore/DataModel/Entities.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LarkspireCLI/Support/GlobalOptions.h"
#include "LarkspireCLI/Support/NoteFinder.h"

namespace lk {

struct TaskText {
  std::string substring;
};
struct TaskID {
  UUID id;
};
using TaskSelector = std::variant<TaskText, TaskID>;

// Exactly one of the two is given.
TaskSelector makeSelector(const std::optional<std::string>& text,
                          const std::optional<std::string>& id);

// The tasks of notes that are neither trashed nor archived.
std::vector<LKTask*> liveTasks(CacheReader& cache);

// The note of that title, or without one the note that has the task. `cache` reads tasks.
ResolvedNote resolveTaskNote(const std::optional<std::string>& note, const TaskSelector& selector,
                             const std::filesystem::path& collection, const GlobalOptions& options,
                             CacheReader& cache);

// The tasks of a body under the ids that they keep when the note is written: the entries derived
// from the block's, without hashes, so that each stands for the line at its index and that line may
// say something else.
std::vector<TaskEntry> entriesByLine(std::string_view body, const std::vector<TaskEntry>& stored);

// The line of the task: where its line went, or when none says what it said, the task line in its
// place among the entries, unless that one is another entry's. Nothing also without an entry.
std::optional<size_t> locateTaskLine(std::string_view body, const std::vector<TaskEntry>& stored,
                                     const UUID& id);

using LineTransform = std::function<std::string(std::string_view line)>;

// Puts what `transform` makes of the task's line in its place; the task keeps its id, which is
// given back.
UUID transformSelectedTask(const ResolvedNote& note, const TaskSelector& selector,
                           const LineTransform& transform);

// Takes the task's line out of the note.
UUID removeSelectedTask(const ResolvedNote& note, const TaskSelector& selector);

// Puts the line directly under the last line of the note's body. Gives the new task's id.
UUID appendTask(const ResolvedNote& note, const std::string& line);

}  // namespace lk
