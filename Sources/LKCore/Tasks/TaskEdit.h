#pragma once

// What can be done to a task, and doing it to the text of a note's file. Pure functions: the disk,
// the cache and the notices are the surgeon's (LKTaskFileSurgeon.h).
//
//     const auto edited = editTask(content, taskID, 0, SetTaskDue{Day{2026, 3, 20}});
//     if (edited) write(edited->text);

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "LKCore/Base/Time.h"
#include "LKCore/Base/UUID.h"
#include "LKCore/Tasks/FileMap.h"

namespace lk {

struct SetTaskStatus {
  int raw = 0;  // TaskStatus
  Day today;    // what a task becoming done is given
};
struct SetTaskDue {
  std::optional<Day> date;
};
struct SetTaskPriority {
  int raw = 0;  // LKTaskPriority
};
struct SetTaskProject {
  std::optional<std::string> name;    // missing or empty for no project
  std::vector<std::string> keywords;  // LKProjectTermsSnapshot::metadataKeywords
};
// All that stands after the mark, dates and other words included.
struct SetTaskText {
  std::string remainder;
};
struct AddTaskComment {
  std::string text;
};
// An empty text removes the comment.
struct SetTaskComment {
  size_t offset = 0;  // among the task's comments, from 0
  std::string text;
};
// Every comment of the task, a line each. Leading blanks say how much deeper than the task it
// stands: a tab, or four spaces, a level.
struct SetTaskComments {
  std::vector<std::string> lines;
};

using TaskEdit = std::variant<SetTaskStatus, SetTaskDue, SetTaskPriority, SetTaskProject,
                              SetTaskText, AddTaskComment, SetTaskComment, SetTaskComments>;

// A note that is open in an editor: its live body and the ids of its task lines, in order.
struct OpenNoteSnapshot {
  std::string body;
  std::vector<UUID> taskIDs;
};

struct EditedTaskFile {
  std::string text;  // the whole file
  std::string line;  // the task's, as it is now
  std::vector<std::string> comments;
  std::optional<UUID> noteID;
};

// Nothing when there is nothing to change or the edit is refused: the content is not UTF-8, the
// task cannot be located, the edit does not fit its line, or a given text holds a newline scalar.
//
// Changes the task's line, or the comment lines under it, and where those move lines or where the
// task's stored hash would no longer fit, the two lines of the block that say where tasks are; the
// task's own place is then told anew. No other byte. With a snapshot whose ids fit its body the task lines are known from that.
std::optional<EditedTaskFile> editTask(std::string_view content, const UUID& taskID,
                                       int fallbackParagraphIndex, const TaskEdit& edit,
                                       const std::optional<OpenNoteSnapshot>& snapshot = {});

// Takes the tasks' places from the live text instead of from `lk-tasks`; leaves the map alone when
// the ids do not fit the body.
void adoptSnapshot(FileMap& map, const OpenNoteSnapshot& snapshot);

// The comments under a task line, without indentation and mark.
std::vector<std::string> commentsOf(const FileMap& map, size_t taskLine);

// The same with a tab for each level that a comment stands deeper than its task; what
// SetTaskComments takes.
std::vector<std::string> commentLinesOf(const FileMap& map, size_t taskLine);

}  // namespace lk
