#include "LKCore/CacheSync/LKTaskCacheSync.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "LKCore/Base/Log.h"
#include "LKCore/Base/Notices.h"
#include "LKCore/Base/Text.h"
#include "LKCore/DataModel/LKModelContainer.h"
#include "LKCore/Navigation/LKProjectStore.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Tasks/LKTaskDue.h"
#include "LKCore/Tasks/LKTaskLiveChange.h"

namespace lk::LKTaskCacheSync {

namespace {

// --- The host's reminders ------------------------------------------------------------------------

struct Reminders {
  std::mutex mutex;
  std::function<void(LKContext&)> reconcile;
};

Reminders& reminders() {
  static Reminders instance;
  return instance;
}

void reconcileReminders(LKContext& context) {
  std::function<void(LKContext&)> reconcile;
  {
    const std::lock_guard guard(reminders().mutex);
    reconcile = reminders().reconcile;
  }
  if (reconcile) reconcile(context);
}

// --- Rows ----------------------------------------------------------------------------------------

template <typename Value, typename NewValue>
bool setIfDifferent(Value& value, NewValue&& newValue) {
  if (value == newValue) return false;
  value = std::forward<NewValue>(newValue);
  return true;
}

// The rows of a note while they are brought in step with its text.
class TaskRows {
 public:
  TaskRows(LKNote& note, const std::vector<TaskEntry>& entries, LKContext& context)
      : note_(note), context_(context) {
    std::unordered_set<UUID> named;
    for (const TaskEntry& entry : entries) {
      entryIDs_.emplace(entry.paragraphIndex, entry.id);
      named.insert(entry.id);
    }
    for (LKTask* row : note.tasks) {
      byID_.emplace(row->id, row);
      if (!named.contains(row->id)) unnamed_.emplace(row->paragraphIndex, row);
    }
  }

  // The row of this task, from wherever it is.
  LKTask& rowFor(const TaskInfo& info) {
    const auto entry = entryIDs_.find(info.paragraphIndex);
    LKTask* const existing =
        entry == entryIDs_.end() ? unnamedRowOf(info) : existingRow(entry->second);
    LKTask& row = existing == nullptr
                      ? newRow(entry == entryIDs_.end() ? UUID::random() : entry->second)
                      : *existing;
    kept_.insert(&row);
    return row;
  }

  // True when there were any to remove.
  bool removeOthers() {
    std::vector<LKTask*> others;
    std::ranges::copy_if(note_.tasks, std::back_inserter(others),
                         [&](LKTask* row) { return !kept_.contains(row); });
    // A row is looked for in its note from the end.
    for (auto row = others.rbegin(); row != others.rend(); ++row) context_.tasks().remove(**row);
    return !others.empty();
  }

  bool hasNewRows() const { return hasNewRows_; }

 private:
  LKTask* existingRow(const UUID& id) {
    const auto own = byID_.find(id);
    if (own != byID_.end()) return own->second;
    const auto found = context_.tasks().fetch({.where = tasksWithID(id), .limit = 1});
    if (found.empty()) return nullptr;
    setNote(*found.front(), &note_);  // the line was moved here from another note
    hasNewRows_ = true;
    return found.front();
  }

  LKTask* unnamedRowOf(const TaskInfo& info) const {
    const auto found = unnamed_.find(info.paragraphIndex);
    const bool isSame = found != unnamed_.end() && found->second->text == info.text;
    return isSame ? found->second : nullptr;
  }

  LKTask& newRow(const UUID& id) {
    LKTask row;
    row.id = id;
    LKTask& added = context_.tasks().insert(std::move(row));
    setNote(added, &note_);
    hasNewRows_ = true;
    return added;
  }

  LKNote& note_;
  LKContext& context_;
  std::unordered_map<UUID, LKTask*> byID_;
  std::unordered_map<int, UUID> entryIDs_;
  std::unordered_map<int, LKTask*> unnamed_;  // those that no entry names, by their lines
  std::unordered_set<const LKTask*> kept_;
  bool hasNewRows_ = false;
};

std::vector<std::string> projectNames(const LKNote& note) {
  std::vector<std::string> names;
  for (const LKTask* task : note.tasks) {
    if (task->project) names.push_back(*task->project);
  }
  return names;
}

void makeProjectsKnown(const LKNote& note) {
  try {
    LKProjectStore::shared().ensureExists(projectNames(note));
  } catch (const FileError& error) {
    log::warning("projects of tasks are not registered: " + error.description());
  }
}

}  // namespace

Outcome syncTasks(const UUID& noteID, std::string_view body,
                  const std::vector<TaskEntry>& taskEntries, LKContext& context) {
  const auto notes = context.notes().fetch({.where = notesWithID(noteID), .limit = 1});
  if (notes.empty()) return NoteNotFound{};
  LKNote& note = *notes.front();
  const ExtractionResult found = LKTagExtractor::extract(body);
  const std::vector<std::string_view> tags(found.projectTags.begin(), found.projectTags.end());
  const auto inherited = inheritableProject(tags);
  TaskRows rows(note, taskEntries, context);
  bool isChanged = false;
  for (const TaskInfo& info : found.tasks) {
    isChanged = populate(rows.rowFor(info), info, inherited) || isChanged;
  }
  isChanged = rows.removeOthers() || rows.hasNewRows() || isChanged;
  context.save();
  if (isChanged) notices::post(lkTasksChanged);
  if (found.tasks.empty()) return ClearedNoTasks{};
  reconcileReminders(context);
  makeProjectsKnown(note);
  return Synced{found.tasks.size()};
}

Outcome syncTasks(const UUID& noteID, const UUID& collectionID, std::string_view body,
                  const std::vector<TaskEntry>& taskEntries) {
  const std::unique_ptr<LKContext> context = LKModelContainer::shared().newContext(collectionID);
  return syncTasks(noteID, body, taskEntries, *context);
}

void setReminders(std::function<void(LKContext&)> reconcile) {
  const std::lock_guard guard(reminders().mutex);
  reminders().reconcile = std::move(reconcile);
}

std::optional<std::string> inheritableProject(std::span<const std::string_view> noteTags,
                                              const LKProjectTermsSnapshot& terms) {
  std::optional<std::string> name;
  for (const std::string_view tag : noteTags) {
    const auto offset = terms.projectNameOffset(tag);
    if (!offset) continue;
    const std::string_view named = tag.substr(*offset);
    if (!name) {
      name = named;
    } else if (!text::equalIgnoringCase(*name, named)) {
      return std::nullopt;
    }
  }
  return name;
}

ResolvedProject resolvedProject(const std::optional<std::string>& explicitName,
                                const std::optional<std::string>& inherited) {
  if (explicitName && !explicitName->empty()) return {explicitName, false};
  if (inherited && !inherited->empty()) return {inherited, true};
  return {};
}

bool populate(LKTask& task, const TaskInfo& info,
              const std::optional<std::string>& inheritedProject) {
  const ResolvedProject project = resolvedProject(info.project, inheritedProject);
  bool isChanged = setIfDifferent(task.text, info.text);
  isChanged = setIfDifferent(task.paragraphIndex, info.paragraphIndex) || isChanged;
  isChanged = setIfDifferent(task.isComplete, info.isComplete) || isChanged;
  isChanged = setIfDifferent(task.statusRaw, info.statusRaw) || isChanged;
  isChanged = setIfDifferent(task.dateDue, info.dueDate) || isChanged;
  isChanged = setIfDifferent(task.dateCompleted, info.doneDate) || isChanged;
  isChanged = setIfDifferent(task.priority, info.priority) || isChanged;
  isChanged = setIfDifferent(task.contexts, info.contexts) || isChanged;
  isChanged = setIfDifferent(task.detail, info.detail) || isChanged;
  isChanged = setIfDifferent(task.project, project.name) || isChanged;
  return setIfDifferent(task.projectIsInherited, project.isInherited) || isChanged;
}

void refreshTaskCounters(LKNote& note, Instant now) {
  note.activeTaskCount = 0;
  note.doneTaskCount = 0;
  note.overdueTaskCount = 0;
  for (const LKTask* task : note.tasks) {
    ++(task->isComplete ? note.doneTaskCount : note.activeTaskCount);
    const bool isLate =
        !task->isComplete && task->dateDue && LKTaskDue::isOverdue(*task->dateDue, now);
    if (isLate) ++note.overdueTaskCount;
  }
  note.hasActiveTasks = note.activeTaskCount > 0;
}

}  // namespace lk::LKTaskCacheSync
