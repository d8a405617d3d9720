#include "LKCore/Tasks/TaskEdit.h"

#include <algorithm>
#include <iterator>

#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKTaskEntries.h"
#include "LKCore/Tasks/TaskLine.h"
#include "LKCore/Tasks/TaskTokens.h"

namespace lk {

namespace {

// One edit of one located task. Each operator gives false, with the map unchanged, when the edit
// is refused or changes nothing.
class TaskOperation {
 public:
  TaskOperation(FileMap& map, size_t taskLine, const UUID& taskID)
      : map_(map), taskLine_(taskLine), taskID_(taskID) {}

  bool operator()(const SetTaskStatus& edit) {
    return replaceTask(taskline::settingStatus(task(), edit.raw, edit.today));
  }
  bool operator()(const SetTaskDue& edit) {
    return replaceTask(taskline::settingDue(task(), edit.date));
  }
  bool operator()(const SetTaskPriority& edit) {
    return replaceTask(taskline::settingPriority(task(), edit.raw));
  }
  bool operator()(const SetTaskProject& edit) {
    return replaceTask(taskline::settingProject(task(), edit.name, edit.keywords));
  }

  bool operator()(const SetTaskText& edit) {
    if (!replaceTask(taskline::settingText(task(), edit.remainder))) return false;
    if (TaskEntry* const entry = map_.entryOf(taskID_)) storeHash(*entry);
    return true;
  }

  bool operator()(const AddTaskComment& edit) {
    if (!taskline::fitsInLine(edit.text)) return false;
    const size_t end = map_.commentRange(taskLine_).end;
    replaceLines({end, end}, {taskline::comment(leadingBlanks(task()), edit.text, task())});
    return true;
  }

  bool operator()(const SetTaskComment& edit) {
    const FileMap::CommentRange range = map_.commentRange(taskLine_);
    if (edit.offset >= range.end - range.start || !taskline::fitsInLine(edit.text)) return false;
    const size_t line = range.start + edit.offset;
    if (edit.text.empty()) {
      replaceLines({line, line + 1}, {});
      return true;
    }
    const std::string& old = map_.lines[line];
    std::string changed = taskline::comment(leadingBlanks(old), edit.text, old);
    if (changed == old) return false;
    map_.lines[line] = std::move(changed);
    return true;
  }

  bool operator()(const SetTaskComments& edit) {
    if (!std::ranges::all_of(edit.lines, taskline::fitsInLine)) return false;
    std::vector<std::string> changed;
    for (const std::string& line : edit.lines) {
      const std::string indentation =
          std::string(leadingBlanks(task())) + std::string(taskline::tabLevel(line), '\t');
      const std::string_view text = std::string_view(line).substr(leadingBlanks(line).size());
      changed.push_back(taskline::comment(indentation, text, task()));
    }
    return replaceLines(map_.commentRange(taskLine_), std::move(changed));
  }

 private:
  const std::string& task() const { return map_.lines[taskLine_]; }

  bool replaceTask(std::optional<std::string> changed) {
    if (!changed || *changed == task()) return false;
    map_.lines[taskLine_] = std::move(*changed);
    // A word cut out of another leaves text behind, which the hash counts: the task stays itself.
    TaskEntry* const entry = map_.entryOf(taskID_);
    if (entry != nullptr && entry->hash && !taskLineFits(task(), *entry->hash)) storeHash(*entry);
    return true;
  }

  void storeHash(TaskEntry& entry) {
    entry.hash = taskHash(task());
    map_.frontMatterDirty = true;
  }

  bool replaceLines(FileMap::CommentRange range, std::vector<std::string> changed) {
    std::vector<std::string>& lines = map_.lines;
    const auto at = [&](size_t line) { return lines.begin() + static_cast<ptrdiff_t>(line); };
    const size_t oldCount = range.end - range.start;
    if (std::equal(at(range.start), at(range.end), changed.begin(), changed.end())) return false;
    const size_t newCount = changed.size();
    const auto hole = lines.erase(at(range.start), at(range.end));
    lines.insert(hole, std::make_move_iterator(changed.begin()),
                 std::make_move_iterator(changed.end()));
    if (newCount > oldCount) map_.shiftIndicesForInsertion(range.end, newCount - oldCount);
    if (newCount < oldCount) {
      map_.shiftIndicesForRemoval(range.start + newCount, oldCount - newCount);
    }
    return true;
  }

  FileMap& map_;
  size_t taskLine_;
  const UUID& taskID_;
};

}  // namespace

void adoptSnapshot(FileMap& map, const OpenNoteSnapshot& snapshot) {
  if (!text::isValidUTF8(snapshot.body)) return;
  std::vector<TaskEntry> entries;
  int index = 0;
  for (const std::string_view line : text::split(snapshot.body, '\n')) {
    if (isTaskLine(line)) {
      if (entries.size() == snapshot.taskIDs.size()) return;
      entries.push_back({index, snapshot.taskIDs[entries.size()], taskHash(line)});
    }
    ++index;
  }
  if (entries.size() == snapshot.taskIDs.size()) map.entries = std::move(entries);
}

std::optional<EditedTaskFile> editTask(std::string_view content, const UUID& taskID,
                                       int fallbackParagraphIndex, const TaskEdit& edit,
                                       const std::optional<OpenNoteSnapshot>& snapshot) {
  if (!text::isValidUTF8(content)) return std::nullopt;
  FileMap map(content);
  if (snapshot) adoptSnapshot(map, *snapshot);
  const auto line = map.locateTask(taskID, fallbackParagraphIndex);
  if (!line || !std::visit(TaskOperation(map, *line, taskID), edit)) return std::nullopt;
  // A task that was found elsewhere than its entry says: the new lines may hold its twin there.
  if (TaskEntry* const entry = map.frontMatterDirty ? map.entryOf(taskID) : nullptr) {
    entry->paragraphIndex = static_cast<int>(*line - map.bodyStart);
  }
  map.rebuildFrontMatterIfNeeded();
  return EditedTaskFile{map.joined(), map.lines[*line], commentsOf(map, *line), map.noteID};
}

std::vector<std::string> commentsOf(const FileMap& map, size_t taskLine) {
  const FileMap::CommentRange range = map.commentRange(taskLine);
  std::vector<std::string> comments;
  for (size_t line = range.start; line < range.end; ++line) {
    comments.push_back(taskline::commentText(map.lines[line]));
  }
  return comments;
}

std::vector<std::string> commentLinesOf(const FileMap& map, size_t taskLine) {
  const size_t taskLevel = taskline::tabLevel(map.lines[taskLine]);
  std::vector<std::string> comments = commentsOf(map, taskLine);
  for (size_t i = 0; i < comments.size(); ++i) {
    const size_t level = taskline::tabLevel(map.lines[taskLine + 1 + i]);
    if (level > taskLevel) comments[i].insert(0, level - taskLevel, '\t');
  }
  return comments;
}

}  // namespace lk
