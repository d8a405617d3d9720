#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "LKCore/Base/UUID.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"

namespace lk {

// A note's file as the task surgeon sees it: lines, and what the block says about tasks and folds.
// Unlike parseDocument it keeps every byte: `joined` is the file again. Without a block, or with
// one that is not closed, the whole file is body.
//
//     FileMap map(content);
//     if (const auto line = map.locateTask(taskID, 0)) map.lines[*line].append(" done:2026-03-14");
struct FileMap {
  // The file split at line feeds alone; the carriage returns of a CR LF file stay on their lines.
  std::vector<std::string> lines;
  size_t bodyStart = 0;            // the line after the block
  std::vector<TaskEntry> entries;  // `paragraphIndex` counts lines from `bodyStart`
  std::vector<int> foldedIndices;  // likewise
  std::optional<size_t> lkTasksLine;
  std::optional<size_t> lkFoldedLine;
  std::optional<UUID> noteID;
  bool frontMatterDirty = false;  // the two lines no longer say what the fields say

  // `content` is valid UTF-8.
  explicit FileMap(std::string_view content);

  // The line of a task. With an entry: the line at its index, if it is a task line and its hash
  // fits; otherwise the first task line whose hash fits; otherwise nothing, since a line that
  // fails both may be any task. An entry without a hash has its index alone. Without an entry:
  // the task line at the fallback index of the body.
  std::optional<size_t> locateTask(const UUID& taskID, int fallbackParagraphIndex) const;

  // Every task with an entry that can be located, and its line, in the order of the entries. A
  // line is the first task's that is found there.
  std::vector<std::pair<UUID, size_t>> locateAll() const;

  // The first entry of the task, or null.
  TaskEntry* entryOf(const UUID& taskID);

  // The comments of the task at a line: those lines directly under it.
  struct CommentRange {
    size_t start = 0;
    size_t end = 0;  // excluded
  };
  CommentRange commentRange(size_t taskLine) const;

  // Keeps indices with their lines when `count` lines are put in before the line, or when `count`
  // lines from it on are taken out. `line` counts from the file's start and is in the body.
  void shiftIndicesForInsertion(size_t line, size_t count);
  void shiftIndicesForRemoval(size_t line, size_t count);

  // Brings the two lines up to date; a missing one is not added.
  void rebuildFrontMatterIfNeeded();

  std::string joined() const;

 private:
  void readBlock(size_t closingLine);
  std::optional<size_t> taskLineAt(int paragraphIndex) const;
};

// True when the line's hash, of this version or an older one, fits the stored one.
bool taskLineFits(std::string_view line, std::string_view storedHash);

}  // namespace lk
