#include "LKCore/Tasks/LKTaskFileSurgeon.h"

#include <exception>
#include <utility>

#include "LKCore/Base/Log.h"
#include "LKCore/Base/Notices.h"
#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKFileWrite.h"
#include "LKCore/NoteFiles/LKOwnFileWrites.h"
#include "LKCore/NoteFiles/LKTaskEntries.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Terminology/LKProjectTerms.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

std::string wordsOf(std::string_view taskLine) {
  return canonicalTaskText(taskLine, LKProjectTerms::snapshot()->metadataKeywords, true);
}

bool changesComments(const TaskEdit& edit) {
  return std::holds_alternative<AddTaskComment>(edit) ||
         std::holds_alternative<SetTaskComment>(edit) ||
         std::holds_alternative<SetTaskComments>(edit);
}

// Tells the cache what an edit that was written says.
struct CacheUpdate {
  LKTaskCache& cache;
  const UUID& taskID;
  const std::string& line;
  Instant now;

  void operator()(const SetTaskStatus& edit) const {
    const auto status = static_cast<TaskStatus>(edit.raw);  // refused outside 0 to 3
    cache.updateStatus(taskID, status,
                       status == TaskStatus::done ? std::optional(now) : std::nullopt);
  }
  void operator()(const SetTaskDue& edit) const { cache.updateDue(taskID, edit.date); }
  void operator()(const SetTaskPriority& edit) const { cache.updatePriority(taskID, edit.raw); }
  void operator()(const SetTaskProject& edit) const { cache.updateProject(taskID, edit.name); }
  void operator()(const SetTaskText& /*edit*/) const { cache.updateText(taskID, wordsOf(line)); }
  void operator()(const AddTaskComment& /*edit*/) const {}
  void operator()(const SetTaskComment& /*edit*/) const {}
  void operator()(const SetTaskComments& /*edit*/) const {}
};

}  // namespace

LKTaskFileSurgeon::LKTaskFileSurgeon(LKTaskCache* cache, Clock clock)
    : cache_(cache), clock_(std::move(clock)) {}

bool LKTaskFileSurgeon::setStatus(const LKTaskReference& task, int raw) {
  return perform(task, SetTaskStatus{raw, Day::local(clock_())});
}

bool LKTaskFileSurgeon::markDone(const UUID& noteID, const UUID& taskID, const UUID& collectionID) {
  std::optional<LKTaskCache::Place> place;
  try {
    if (cache_ != nullptr) place = cache_->placeOfTask(noteID, taskID, collectionID);
  } catch (const std::exception& error) {
    log::warning(std::string("task lookup failed: ") + error.what());
  }
  return place &&
         setStatus({place->url, taskID, place->paragraphIndex}, static_cast<int>(TaskStatus::done));
}

bool LKTaskFileSurgeon::setDueDate(const LKTaskReference& task, std::optional<Day> date) {
  return perform(task, SetTaskDue{date});
}

bool LKTaskFileSurgeon::setPriority(const LKTaskReference& task, int raw) {
  return perform(task, SetTaskPriority{raw});
}

bool LKTaskFileSurgeon::setProject(const LKTaskReference& task,
                                   const std::optional<std::string>& name) {
  return perform(task, SetTaskProject{name, LKProjectTerms::snapshot()->metadataKeywords});
}

bool LKTaskFileSurgeon::setTaskText(const LKTaskReference& task, const std::string& newRemainder) {
  return perform(task, SetTaskText{newRemainder});
}

bool LKTaskFileSurgeon::addComment(const LKTaskReference& task, const std::string& text) {
  return perform(task, AddTaskComment{text});
}

bool LKTaskFileSurgeon::setComment(const LKTaskReference& task, size_t commentOffset,
                                   const std::string& newText) {
  return perform(task, SetTaskComment{commentOffset, newText});
}

bool LKTaskFileSurgeon::setComments(const LKTaskReference& task,
                                    const std::vector<std::string>& lines) {
  return perform(task, SetTaskComments{lines});
}

std::vector<std::string> LKTaskFileSurgeon::comments(const LKTaskReference& task) {
  const auto url = urlOf(task);
  const auto map = url ? mapOf(*url) : std::nullopt;
  const auto line = map ? map->locateTask(task.taskID, task.fallbackParagraphIndex) : std::nullopt;
  return line ? commentsOf(*map, *line) : std::vector<std::string>{};
}

std::vector<std::string> LKTaskFileSurgeon::commentLinesPreservingIndent(
    const LKTaskReference& task) {
  const auto url = urlOf(task);
  const auto map = url ? mapOf(*url) : std::nullopt;
  const auto line = map ? map->locateTask(task.taskID, task.fallbackParagraphIndex) : std::nullopt;
  return line ? commentLinesOf(*map, *line) : std::vector<std::string>{};
}

std::map<UUID, std::vector<std::string>> LKTaskFileSurgeon::commentMap(const fs::path& url) {
  std::map<UUID, std::vector<std::string>> result;
  const auto map = mapOf(url);
  if (!map) return result;
  for (const auto& [id, line] : map->locateAll()) {
    auto taskComments = commentsOf(*map, line);
    if (!taskComments.empty()) result.emplace(id, std::move(taskComments));
  }
  return result;
}

int LKTaskFileSurgeon::nextStatus(int raw) {
  constexpr int kStatuses = 4;
  return (raw % kStatuses + kStatuses + 1) % kStatuses;
}

bool LKTaskFileSurgeon::perform(const LKTaskReference& task, const TaskEdit& edit) {
  const auto file = editFile(task, edit);
  if (!file) return false;
  updateCache(task.taskID, edit, file->line);
  announce(task, edit, *file);
  return true;
}

std::optional<EditedTaskFile> LKTaskFileSurgeon::editFile(const LKTaskReference& task,
                                                          const TaskEdit& edit) {
  const auto url = urlOf(task);
  if (!url) return std::nullopt;
  try {
    // A first look, so that nobody is asked about a write that is not to come. The hook runs
    // before the lock is taken: it may write the file itself.
    if (prepareForWrite && (!edited(*url, *url, task, edit) || !prepareForWrite(*url))) {
      return std::nullopt;
    }
    return retriedWhenChanged([&]() -> std::optional<EditedTaskFile> {
      const FileLock lock = FileLock::forUpdate(*url);
      auto file = edited(lock.path(), *url, task, edit);
      if (!file) return std::nullopt;
      const LKOwnFileWrites::Scope inFlight(lock.path());
      LKFileWrite::atomically(file->text, lock);
      return file;
    });
  } catch (const std::exception& error) {
    log::warning(std::string("task edit failed: ") + error.what());
    return std::nullopt;
  }
}

std::optional<EditedTaskFile> LKTaskFileSurgeon::edited(const fs::path& file, const fs::path& url,
                                                        const LKTaskReference& task,
                                                        const TaskEdit& edit) {
  const auto snapshot = openNoteSnapshot ? openNoteSnapshot(url) : std::nullopt;
  return editTask(readFile(file), task.taskID, task.fallbackParagraphIndex, edit, snapshot);
}

void LKTaskFileSurgeon::updateCache(const UUID& taskID, const TaskEdit& edit,
                                    const std::string& line) {
  if (cache_ == nullptr) return;
  try {
    std::visit(CacheUpdate{*cache_, taskID, line, clock_()}, edit);
  } catch (const std::exception& error) {
    log::warning(std::string("task cache update failed: ") + error.what());
  }
}

void LKTaskFileSurgeon::announce(const LKTaskReference& task, const TaskEdit& edit,
                                 const EditedTaskFile& file) {
  try {
    LKTaskLiveChange change;
    change.taskID = task.taskID;
    const UUID* const noteID = std::get_if<UUID>(&task.note);
    change.noteID = noteID != nullptr ? std::optional(*noteID) : file.noteID;
    change.state = LKTaskDiscreteState::parse(file.line).value_or(LKTaskDiscreteState{});
    if (std::holds_alternative<SetTaskText>(edit)) change.text = wordsOf(file.line);
    if (changesComments(edit)) change.comments = file.comments;
    if (onLiveChange) onLiveChange(change);
    notices::post(lkTasksChanged);
  } catch (const std::exception& error) {
    log::warning(std::string("telling of a changed task failed: ") + error.what());
  }
}

std::optional<fs::path> LKTaskFileSurgeon::urlOf(const LKTaskReference& task) {
  if (const auto* const url = std::get_if<fs::path>(&task.note)) return *url;
  if (cache_ == nullptr) return std::nullopt;
  try {
    return cache_->urlOfNote(std::get<UUID>(task.note));
  } catch (const std::exception& error) {
    log::warning(std::string("note lookup failed: ") + error.what());
    return std::nullopt;
  }
}

std::optional<FileMap> LKTaskFileSurgeon::mapOf(const fs::path& url) {
  try {
    const std::string content = readFile(url);
    if (!text::isValidUTF8(content)) return std::nullopt;
    FileMap map(content);
    if (const auto snapshot = openNoteSnapshot ? openNoteSnapshot(url) : std::nullopt) {
      adoptSnapshot(map, *snapshot);
    }
    return map;
  } catch (const std::exception& error) {
    log::warning(std::string("reading a note's tasks failed: ") + error.what());
    return std::nullopt;
  }
}

}  // namespace lk
