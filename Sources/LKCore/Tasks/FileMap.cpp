#include "LKCore/Tasks/FileMap.h"

#include <algorithm>
#include <limits>
#include <unordered_map>
#include <unordered_set>

#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKTaskEntries.h"
#include "LKCore/NoteFiles/NoteBlock.h"
#include "LKCore/NoteFiles/NoteLists.h"
#include "LKCore/Tasks/TaskLine.h"

namespace lk {

namespace {

constexpr std::string_view kIDKey = "id:";
constexpr std::string_view kTasksKey = "lk-tasks:";
constexpr std::string_view kFoldedKey = "lk-folded:";
constexpr std::string_view kRanksKey = "lk-tag-rank:";
constexpr size_t kLiveHashLength = 8;

// A line of the block without outer blanks and without the carriage return of its end.
std::string_view blockLine(std::string_view line) {
  if (line.ends_with('\r')) line.remove_suffix(1);
  return text::trimmedBlanks(line);
}

std::optional<std::string_view> valueOf(std::string_view line, std::string_view key) {
  if (!line.starts_with(key)) return std::nullopt;
  return text::trimmedBlanks(line.substr(key.size()));
}

bool isFence(const std::string& line) {
  return blockLine(line) == kBlockFence;
}

bool hasHash(const TaskEntry& entry) {
  return entry.hash && !entry.hash->empty();
}

// The hashes of a body's task lines, each made once, and the first line for each hash and each
// beginning of one: looking up every entry of a note takes linear time whatever its entries say.
class TaskLineHashes {
 public:
  TaskLineHashes(const std::vector<std::string>& lines, size_t bodyStart) {
    for (size_t line = bodyStart; line < lines.size(); ++line) {
      if (!isTaskLine(lines[line])) continue;
      const auto& hashes = hashes_.emplace(line, taskHashCandidates(lines[line])).first->second;
      for (const std::string& hash : hashes) {
        for (size_t length = 1; length <= hash.size(); ++length) {
          first_.emplace(hash.substr(0, length), line);
        }
      }
    }
  }

  bool fits(size_t line, const std::string& stored) const {
    return std::ranges::any_of(
        hashes_.at(line), [&](const std::string& hash) { return taskHashesMatch(stored, hash); });
  }

  std::optional<size_t> firstLine(const std::string& stored) const {
    const auto found = first_.find(stored.substr(0, kLiveHashLength));
    if (found == first_.end()) return std::nullopt;
    return found->second;
  }

 private:
  std::unordered_map<size_t, std::vector<std::string>> hashes_;
  std::unordered_map<std::string, size_t> first_;
};

// Both ends of an index stay in range: a file may say any number.
int shifted(int index, int64_t by, int64_t lowest) {
  constexpr int64_t kHighest = std::numeric_limits<int>::max();
  return static_cast<int>(std::min(std::max(index + by, lowest), kHighest));
}

void replaceValue(std::string& line, std::string_view key, const std::string& value) {
  const bool hasReturn = line.ends_with('\r');
  line = std::string(key) + " " + value;
  if (hasReturn) line.push_back('\r');
}

}  // namespace

bool taskLineFits(std::string_view line, std::string_view storedHash) {
  return std::ranges::any_of(taskHashCandidates(line), [&](const std::string& hash) {
    return taskHashesMatch(storedHash, hash);
  });
}

FileMap::FileMap(std::string_view content) {
  for (const std::string_view line : text::split(content, '\n')) lines.emplace_back(line);
  if (!isFence(lines.front())) return;
  const auto closing = std::find_if(lines.begin() + 1, lines.end(), isFence);
  if (closing == lines.end()) return;
  const auto closingLine = static_cast<size_t>(closing - lines.begin());
  bodyStart = closingLine + 1;
  readBlock(closingLine);
}

void FileMap::readBlock(size_t closingLine) {
  bool isInRanks = false;
  for (size_t i = 1; i < closingLine; ++i) {
    const std::string_view line = blockLine(lines[i]);
    // A tag may have the name of a key.
    isInRanks = isInRanks && (lines[i].starts_with(' ') || lines[i].starts_with('\t'));
    if (isInRanks) continue;
    if (const auto id = valueOf(line, kIDKey)) {
      if (const auto readable = UUID::parse(*id)) noteID = readable;
    } else if (const auto tasks = valueOf(line, kTasksKey)) {
      entries = readTaskList(*tasks);
      lkTasksLine = i;
    } else if (const auto folded = valueOf(line, kFoldedKey)) {
      foldedIndices = readIndexList(*folded);
      lkFoldedLine = i;
    } else {
      isInRanks = line.starts_with(kRanksKey);
    }
  }
}

std::optional<size_t> FileMap::taskLineAt(int paragraphIndex) const {
  if (paragraphIndex < 0) return std::nullopt;
  const size_t line = bodyStart + static_cast<size_t>(paragraphIndex);
  if (line >= lines.size() || !isTaskLine(lines[line])) return std::nullopt;
  return line;
}

std::optional<size_t> FileMap::locateTask(const UUID& taskID, int fallbackParagraphIndex) const {
  const auto entry = std::ranges::find(entries, taskID, &TaskEntry::id);
  if (entry == entries.end()) return taskLineAt(fallbackParagraphIndex);
  const auto atIndex = taskLineAt(entry->paragraphIndex);
  if (!hasHash(*entry)) return atIndex;
  if (atIndex && taskLineFits(lines[*atIndex], *entry->hash)) return atIndex;
  for (size_t line = bodyStart; line < lines.size(); ++line) {
    if (isTaskLine(lines[line]) && taskLineFits(lines[line], *entry->hash)) return line;
  }
  return std::nullopt;
}

std::vector<std::pair<UUID, size_t>> FileMap::locateAll() const {
  const TaskLineHashes hashes(lines, bodyStart);
  std::unordered_set<size_t> taken;
  std::vector<std::pair<UUID, size_t>> located;
  for (const TaskEntry& entry : entries) {
    std::optional<size_t> line = taskLineAt(entry.paragraphIndex);
    if (hasHash(entry) && !(line && hashes.fits(*line, *entry.hash))) {
      line = hashes.firstLine(*entry.hash);
    }
    if (line && taken.insert(*line).second) located.emplace_back(entry.id, *line);
  }
  return located;
}

TaskEntry* FileMap::entryOf(const UUID& taskID) {
  const auto entry = std::ranges::find(entries, taskID, &TaskEntry::id);
  return entry == entries.end() ? nullptr : &*entry;
}

FileMap::CommentRange FileMap::commentRange(size_t taskLine) const {
  CommentRange range = {taskLine + 1, taskLine + 1};
  while (range.end < lines.size() && taskline::isComment(lines[range.end])) ++range.end;
  return range;
}

void FileMap::shiftIndicesForInsertion(size_t line, size_t count) {
  const auto first = static_cast<int64_t>(line - bodyStart);
  const auto shift = [&](int& index) {
    if (index >= first) index = shifted(index, static_cast<int64_t>(count), first);
  };
  for (TaskEntry& entry : entries) shift(entry.paragraphIndex);
  for (int& index : foldedIndices) shift(index);
  frontMatterDirty = true;
}

void FileMap::shiftIndicesForRemoval(size_t line, size_t count) {
  const auto first = static_cast<int64_t>(line - bodyStart);
  // As taking out one line after the other does: what stood among them ends at the first.
  const auto shift = [&](int& index) {
    if (index > first) index = shifted(index, -static_cast<int64_t>(count), first);
  };
  for (TaskEntry& entry : entries) shift(entry.paragraphIndex);
  for (int& index : foldedIndices) shift(index);
  frontMatterDirty = true;
}

void FileMap::rebuildFrontMatterIfNeeded() {
  if (!frontMatterDirty) return;
  if (lkTasksLine) replaceValue(lines[*lkTasksLine], kTasksKey, taskListText(entries));
  if (lkFoldedLine) replaceValue(lines[*lkFoldedLine], kFoldedKey, indexListText(foldedIndices));
  frontMatterDirty = false;
}

std::string FileMap::joined() const {
  std::string file;
  for (size_t i = 0; i < lines.size(); ++i) {
    if (i > 0) file.push_back('\n');
    file.append(lines[i]);
  }
  return file;
}

}  // namespace lk
