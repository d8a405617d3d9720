#pragma once

// Makes the task rows of one note those of its text, under the ids of its front matter.
//
//     const auto entries = deriveTaskEntries(body, frontMatter.taskEntries);
//     LKTaskCacheSync::syncTasks(noteID, body, entries, context);

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "LKCore/Base/Time.h"
#include "LKCore/Base/UUID.h"
#include "LKCore/DataModel/LKContext.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/Tags/LKTagExtractor.h"
#include "LKCore/Terminology/LKProjectTerms.h"

namespace lk::LKTaskCacheSync {

struct Synced {
  size_t count = 0;  // tasks of the note

  bool operator==(const Synced&) const = default;
};
struct NoteNotFound {
  bool operator==(const NoteNotFound&) const = default;
};
struct ClearedNoTasks {
  bool operator==(const ClearedNoTasks&) const = default;
};
using Outcome = std::variant<Synced, NoteNotFound, ClearedNoTasks>;

// Also saves the context, makes the projects known to the registry of the active collection, and
// posts `lkTasksChanged` when a row changed. A task of the text that no entry names keeps its row
// when it stands where it stood, and else gets a fresh id; an entry without a task is passed over.
// Throws LKStoreError; the file is the truth then, and the next sync repeats the work.
Outcome syncTasks(const UUID& noteID, std::string_view body,
                  const std::vector<TaskEntry>& taskEntries, LKContext& context);

// The same on a context of its own over the collection's store.
Outcome syncTasks(const UUID& noteID, const UUID& collectionID, std::string_view body,
                  const std::vector<TaskEntry>& taskEntries);

// Called after each sync that left tasks, with the context: the host's planner of reminders. An
// empty function ends that. Set before the first sync.
void setReminders(std::function<void(LKContext&)> reconcile);

// --- The pieces ----------------------------------------------------------------------------------

// The project that the tags name ("projects/acme"), as it is first spelt: nothing when they name
// none, or two.
std::optional<std::string> inheritableProject(
    std::span<const std::string_view> noteTags,
    const LKProjectTermsSnapshot& terms = *LKProjectTerms::snapshot());

struct ResolvedProject {
  std::optional<std::string> name;
  bool isInherited = false;

  bool operator==(const ResolvedProject&) const = default;
};

// What the line says, else what the note's tags say. An empty name is none.
ResolvedProject resolvedProject(const std::optional<std::string>& explicitName,
                                const std::optional<std::string>& inherited);

// Sets what the text tells of a task; true when anything changed.
bool populate(LKTask& task, const TaskInfo& info,
              const std::optional<std::string>& inheritedProject);

// Counts the note's task rows anew.
void refreshTaskCounters(LKNote& note, Instant now);

}  // namespace lk::LKTaskCacheSync
