#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "LKCore/Base/Time.h"
#include "LKCore/Base/UUID.h"
#include "LKCore/Tasks/TaskStatus.h"

namespace lk {

// What the task surgeon needs of the index: where a note lies, and to be told what a written file
// now says. The file is the truth: an update for a task without a row does nothing, and a failed
// one, which may throw, changes nothing about the edit. Called on the thread that edits.
class LKTaskCache {
 public:
  struct Place {
    std::filesystem::path url;
    int paragraphIndex = 0;  // the task's line in the body, from 0
  };

  LKTaskCache() = default;
  LKTaskCache(const LKTaskCache&) = delete;
  LKTaskCache& operator=(const LKTaskCache&) = delete;
  virtual ~LKTaskCache() = default;

  // Nothing when the note is not known.
  virtual std::optional<std::filesystem::path> urlOfNote(const UUID& noteID) = 0;
  virtual std::optional<Place> placeOfTask(const UUID& noteID, const UUID& taskID,
                                           const UUID& collectionID) = 0;

  // Sets `statusRaw`, `isComplete` (isComplete of the status) and `dateCompleted`, and refreshes
  // the task counters of the note.
  virtual void updateStatus(const UUID& taskID, TaskStatus status,
                            std::optional<Instant> dateCompleted) = 0;
  virtual void updateDue(const UUID& taskID, std::optional<Day> due) = 0;
  virtual void updatePriority(const UUID& taskID, int raw) = 0;
  virtual void updateProject(const UUID& taskID, const std::optional<std::string>& name) = 0;
  // The task's words, without its `key:value` words.
  virtual void updateText(const UUID& taskID, const std::string& text) = 0;
};

}  // namespace lk
