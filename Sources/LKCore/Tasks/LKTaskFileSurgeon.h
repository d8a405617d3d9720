#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "LKCore/Base/Clock.h"
#include "LKCore/Base/UUID.h"
#include "LKCore/Tasks/LKTaskCache.h"
#include "LKCore/Tasks/LKTaskLiveChange.h"
#include "LKCore/Tasks/TaskEdit.h"

namespace lk {

// Which task: in the file at a path, or in the note with an id, whose path the cache knows.
struct LKTaskReference {
  std::variant<std::filesystem::path, UUID> note;
  UUID taskID;
  int fallbackParagraphIndex = 0;  // of the body, from 0, for a task that the note has no id for
};

// Changes a task in its file and leaves every other byte as it was. For notes that no editor has
// open.
//
//     LKTaskFileSurgeon surgeon(&cache);
//     surgeon.setStatus({noteID, taskID}, static_cast<int>(TaskStatus::done));
//     surgeon.setDueDate({url, taskID, 3}, Day{2026, 3, 20});
//
// Every edit is true when the file was changed. It is false, and nothing was written, when there
// was nothing to change, when the task is not surely the one meant (FileMap::locateTask), and when
// the file cannot be read or written: not there, not UTF-8, not writable, a folder. No edit throws.
//
// An edit holds the file's lock from reading to writing, so two processes changing two tasks of
// one note lose neither. After that it updates the cache, calls `onLiveChange` and posts the
// notice `lkTasksChanged`, all on the caller's thread; a failure there goes to the log. One surgeon
// is for one thread at a time; LKTaskEditQueue.h gives it a thread of its own.
class LKTaskFileSurgeon {
 public:
  // The cache must outlive the surgeon; without one, notes are known by their paths alone.
  explicit LKTaskFileSurgeon(LKTaskCache* cache, Clock clock = Instant::now);

  // Called before each write, without the lock; false refuses the edit. May save an open document
  // to the same file: the edit is made to what then is in it.
  std::function<bool(const std::filesystem::path&)> prepareForWrite;
  // The live text of a note that is open, from which the places of its tasks are then taken.
  std::function<std::optional<OpenNoteSnapshot>(const std::filesystem::path&)> openNoteSnapshot;
  std::function<void(const LKTaskLiveChange&)> onLiveChange;

  bool setStatus(const LKTaskReference& task, int raw);
  // Takes path and line from the cache.
  bool markDone(const UUID& noteID, const UUID& taskID, const UUID& collectionID);
  bool setDueDate(const LKTaskReference& task, std::optional<Day> date);
  bool setPriority(const LKTaskReference& task, int raw);
  bool setProject(const LKTaskReference& task, const std::optional<std::string>& name);
  bool setTaskText(const LKTaskReference& task, const std::string& newRemainder);

  bool addComment(const LKTaskReference& task, const std::string& text);
  bool setComment(const LKTaskReference& task, size_t commentOffset, const std::string& newText);
  bool setComments(const LKTaskReference& task, const std::vector<std::string>& lines);

  // What all of the above come down to.
  bool perform(const LKTaskReference& task, const TaskEdit& edit);

  // These only read; a task or a file that is not there has no comments.
  std::vector<std::string> comments(const LKTaskReference& task);
  std::vector<std::string> commentLinesPreservingIndent(const LKTaskReference& task);
  // The comments of each task of the note that has an id and any comments.
  std::map<UUID, std::vector<std::string>> commentMap(const std::filesystem::path& url);

  // The status after the given one, and after the last the first.
  static int nextStatus(int raw);

 private:
  std::optional<EditedTaskFile> editFile(const LKTaskReference& task, const TaskEdit& edit);
  // `url` is the name that the hooks know, `file` where it leads.
  std::optional<EditedTaskFile> edited(const std::filesystem::path& file,
                                       const std::filesystem::path& url,
                                       const LKTaskReference& task, const TaskEdit& edit);
  void updateCache(const UUID& taskID, const TaskEdit& edit, const std::string& line);
  void announce(const LKTaskReference& task, const TaskEdit& edit, const EditedTaskFile& file);
  std::optional<std::filesystem::path> urlOf(const LKTaskReference& task);
  std::optional<FileMap> mapOf(const std::filesystem::path& url);

  LKTaskCache* cache_;
  Clock clock_;
};

}  // namespace lk
