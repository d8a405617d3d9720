#include "LKCore/CacheSync/StoreTaskCache.h"

#include <string_view>
#include <utility>
#include <vector>

#include "LKCore/CacheSync/LKTaskCacheSync.h"

namespace lk {

namespace {

LKNote* bareNote(const UUID& id, LKContext& context) {
  const auto notes =
      context.notes().fetch({.where = notesWithID(id), .limit = 1, .parts = LKParts::none});
  return notes.empty() ? nullptr : notes.front();
}

LKTask* taskRow(const UUID& id, LKContext& context) {
  const auto tasks = context.tasks().fetch({.where = tasksWithID(id), .limit = 1});
  return tasks.empty() ? nullptr : tasks.front();
}

std::optional<std::string> projectOfNote(const LKNote* note) {
  if (note == nullptr) return std::nullopt;
  std::vector<std::string_view> tags;
  for (const LKTag* tag : note->tags) tags.emplace_back(tag->text);
  return LKTaskCacheSync::inheritableProject(tags);
}

}  // namespace

StoreTaskCache::StoreTaskCache(LKContext& context, Clock clock)
    : context_(context), clock_(std::move(clock)) {}

std::optional<std::filesystem::path> StoreTaskCache::urlOfNote(const UUID& noteID) {
  const LKNote* const note = bareNote(noteID, context_);
  return note == nullptr ? std::nullopt : note->fileURL;
}

std::optional<LKTaskCache::Place> StoreTaskCache::placeOfTask(const UUID& noteID,
                                                              const UUID& taskID,
                                                              const UUID& /*collectionID*/) {
  const auto url = urlOfNote(noteID);
  const LKTask* const task = taskRow(taskID, context_);
  const bool isOfNote = task != nullptr && task->note != nullptr && task->note->id == noteID;
  if (!url || !isOfNote) return std::nullopt;
  return Place{*url, task->paragraphIndex};
}

template <typename Change>
void StoreTaskCache::update(const UUID& taskID, Change change) {
  LKTask* const task = taskRow(taskID, context_);
  if (task == nullptr) return;
  change(*task);
  if (task->note != nullptr) LKTaskCacheSync::refreshTaskCounters(*task->note, clock_());
  context_.save();
}

void StoreTaskCache::updateStatus(const UUID& taskID, TaskStatus status,
                                  std::optional<Instant> dateCompleted) {
  update(taskID, [&](LKTask& task) {
    task.statusRaw = static_cast<int>(status);
    task.isComplete = isComplete(status);
    task.dateCompleted = dateCompleted ? std::optional(Day::local(*dateCompleted)) : std::nullopt;
  });
}

void StoreTaskCache::updateDue(const UUID& taskID, std::optional<Day> due) {
  update(taskID, [&](LKTask& task) { task.dateDue = due; });
}

void StoreTaskCache::updatePriority(const UUID& taskID, int raw) {
  update(taskID, [&](LKTask& task) { task.priority = raw; });
}

void StoreTaskCache::updateProject(const UUID& taskID, const std::optional<std::string>& name) {
  update(taskID, [&](LKTask& task) {
    const auto project = LKTaskCacheSync::resolvedProject(name, projectOfNote(task.note));
    task.project = project.name;
    task.projectIsInherited = project.isInherited;
  });
}

void StoreTaskCache::updateText(const UUID& taskID, const std::string& text) {
  update(taskID, [&](LKTask& task) { task.text = text; });
}

}  // namespace lk
