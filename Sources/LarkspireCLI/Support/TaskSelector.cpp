#include "LarkspireCLI/Support/TaskSelector.h"

#include <algorithm>
#include <set>
#include <unordered_set>

#include "LKCore/Base/Text.h"
#include "LKCore/Base/TextRange.h"
#include "LKCore/NoteFiles/LKTaskEntries.h"
#include "LKCore/NoteRepository/LKNoteFileService.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CacheReader.h"
#include "LarkspireCLI/Support/NoteWriting.h"
#include "LarkspireCLI/Support/RequiredNote.h"
#include "LarkspireCLI/Support/TaskLineEdits.h"
#include "LarkspireCLI/Support/Terminal.h"

namespace lk {

namespace {

constexpr size_t kListedMatches = 20;
constexpr const char* kNoLastingID =
    "An id from `tasks list --json` lasts once lk or Larkspire has written the task's note. Until "
    "then, match the task by its text.";

CLIError noSuchID(const std::string& message) {
  return CLIError::general(message).withHint(kNoLastingID);
}

// "\n  FIRST\n  SECOND", cut short when there are very many, and without what could command a
// terminal.
template <typename Items, typename Describe>
std::string listedMatches(const Items& items, const Describe& describe) {
  std::string lines;
  size_t count = 0;
  for (const auto& item : items) {
    if (++count <= kListedMatches) lines += "\n  " + withoutControls(describe(item));
  }
  if (count > kListedMatches) {
    lines += "\n  and " + std::to_string(count - kListedMatches) + " more";
  }
  return lines;
}

// --- In the index --------------------------------------------------------------------------------

ResolvedNote noteOfTask(const LKTask& task) {
  return {*task.note->fileURL, task.note->id, task.note->title};
}

std::vector<LKTask*> tasksSelected(const TaskSelector& selector, CacheReader& cache) {
  std::vector<LKTask*> tasks = liveTasks(cache);
  const auto* const wantedID = std::get_if<TaskID>(&selector);
  const auto* const wantedText = std::get_if<TaskText>(&selector);
  const std::string part = wantedText ? text::caseInsensitiveKey(wantedText->substring) : "";
  std::erase_if(tasks, [&](const LKTask* task) {
    if (task->note == nullptr || !task->note->fileURL) return true;
    if (wantedID) return task->id != wantedID->id;
    return text::caseInsensitiveKey(task->text).find(part) == std::string::npos;
  });
  return tasks;
}

CLIError noTaskSelected(const TaskSelector& selector) {
  const auto* const wantedID = std::get_if<TaskID>(&selector);
  if (wantedID) return noSuchID("No task with id " + wantedID->id.text() + ".");
  return CLIError::general("No task matching \"" + std::get<TaskText>(selector).substring +
                           "\" in any note.");
}

CLIError ambiguousNotes(const std::string& substring, size_t noteCount,
                        const std::vector<LKTask*>& tasks) {
  return CLIError::general(
      "\"" + substring + "\" matches tasks in " + std::to_string(noteCount) +
      " notes. Add --note or use --id:" + listedMatches(tasks, [](const LKTask* task) {
        return task->text + " — " + task->note->title + " (--id " + task->id.text() + ")";
      }));
}

// --- In the file ---------------------------------------------------------------------------------

std::unordered_set<UUID> idsOfEntries(const std::vector<TaskEntry>& entries) {
  std::unordered_set<UUID> ids;
  for (const TaskEntry& entry : entries) ids.insert(entry.id);
  return ids;
}

// The entry in `current` that is the task's.
std::optional<size_t> entryIndexOf(const UUID& id, const std::vector<TaskEntry>& current,
                                   const std::vector<TaskEntry>& stored) {
  const auto now = std::ranges::find(current, id, &TaskEntry::id);
  if (now != current.end()) return static_cast<size_t>(now - current.begin());
  const auto before = std::ranges::find(stored, id, &TaskEntry::id);
  if (before == stored.end()) return std::nullopt;
  const auto ordinal = static_cast<size_t>(before - stored.begin());
  const bool isTaken =
      ordinal >= current.size() || idsOfEntries(stored).contains(current[ordinal].id);
  return isTaken ? std::nullopt : std::optional(ordinal);
}

CLIError ambiguousTextError(std::string_view body, const std::vector<TaskEntry>& current,
                            const std::vector<TaskEntry>& stored,
                            const std::vector<size_t>& indices, const std::string& substring,
                            const std::string& title) {
  const std::vector<std::string_view> lines = text::split(body, '\n');
  const std::unordered_set<UUID> lasting = idsOfEntries(stored);
  const auto described = [&](size_t index) {
    const auto entry =
        std::ranges::lower_bound(current, static_cast<int>(index), {}, &TaskEntry::paragraphIndex);
    const bool hasID = entry != current.end() && lasting.contains(entry->id);
    return TaskLineEdits::taskLineDisplay(lines[index]) +
           (hasID ? " (--id " + entry->id.text() + ")" : " (no id — reopen the note in Larkspire)");
  };
  return CLIError::general(
      std::to_string(indices.size()) + " tasks in " + title + " match \"" + substring +
      "\" — refusing to guess." + listedMatches(indices, described) +
      "\nUse --id <uuid> or a more specific text (see `lk tasks list --json`).");
}

// The entry in `current` of the task that is selected.
size_t selectedEntry(std::string_view body, const std::vector<TaskEntry>& current,
                     const std::vector<TaskEntry>& stored, const TaskSelector& selector,
                     const std::string& title) {
  if (const auto* const wanted = std::get_if<TaskID>(&selector)) {
    if (const auto place = entryIndexOf(wanted->id, current, stored)) return *place;
    throw noSuchID("No task with id " + wanted->id.text() + " in " + title);
  }
  const std::string& substring = std::get<TaskText>(selector).substring;
  const auto indices = TaskLineEdits::matchingTaskLineIndices(body, substring);
  if (indices.empty()) throw CLIError::general("No matching task found in " + title);
  if (indices.size() > 1) {
    throw ambiguousTextError(body, current, stored, indices, substring, title);
  }
  const auto entry = std::ranges::lower_bound(current, static_cast<int>(indices.front()), {},
                                              &TaskEntry::paragraphIndex);
  return static_cast<size_t>(entry - current.begin());
}

// The bytes of a line, its line feed left out.
TextRange taskLineRange(std::string_view body, int index) {
  size_t start = 0;
  for (; index > 0; --index) start = body.find('\n', start) + 1;
  return {start, std::min(body.find('\n', start), body.size())};
}

// Runs `change` on the note under its lock, with the task's entry chosen and every entry standing
// for its line.
using EntryChange =
    std::function<void(std::string& body, std::vector<TaskEntry>& entries, size_t chosen)>;

UUID changeSelected(const ResolvedNote& note, const TaskSelector& selector,
                    const EntryChange& changeEntry) {
  requireReadableBlock(note.url);
  UUID id;
  NoteChange change;
  change.documentTransform = [&](std::string& body, LKFileFrontMatter& block) {
    std::vector<TaskEntry>& stored = block.taskEntries;
    std::vector<TaskEntry> current = entriesByLine(body, stored);
    const size_t chosen = selectedEntry(body, current, stored, selector, note.title);
    if (const auto* const wanted = std::get_if<TaskID>(&selector)) current[chosen].id = wanted->id;
    id = current[chosen].id;
    changeEntry(body, current, chosen);
    stored = std::move(current);
  };
  writeNotes([&] { LKNoteFileService::updateNote(note.url, change); });
  return id;
}

}  // namespace

// --- Choosing ------------------------------------------------------------------------------------

TaskSelector makeSelector(const std::optional<std::string>& text,
                          const std::optional<std::string>& id) {
  if (text && id) throw CLIError::general("Provide either task text or --id, not both.");
  if (!text && !id) {
    throw CLIError::general("Provide a task to act on: a text argument or --id <uuid>.");
  }
  if (id) {
    const auto parsed = UUID::parse(*id);
    if (!parsed) throw CLIError::general("Invalid task id: " + *id);
    return TaskID{*parsed};
  }
  if (text::trimmed(*text).empty()) throw CLIError::general("Task text cannot be empty.");
  return TaskText{*text};
}

std::vector<LKTask*> liveTasks(CacheReader& cache) {
  std::vector<LKTask*> tasks = cache.fetchTasks();
  std::erase_if(tasks, [](const LKTask* task) {
    return task->note != nullptr && (task->note->isTrashed || task->note->isArchived());
  });
  return tasks;
}

ResolvedNote resolveTaskNote(const std::optional<std::string>& note, const TaskSelector& selector,
                             const std::filesystem::path& collection, const GlobalOptions& options,
                             CacheReader& cache) {
  if (note) return requireNoteIn(collection, options, *note);
  if (cache.container() == nullptr) {
    throw CLIError::general(
        "Finding a task without --note needs an index, and lk couldn't build one from the note "
        "files. Pass --note.");
  }
  const std::vector<LKTask*> tasks = tasksSelected(selector, cache);
  if (tasks.empty()) throw noTaskSelected(selector);
  std::set<const LKNote*> notes;
  for (const LKTask* task : tasks) notes.insert(task->note);
  if (notes.size() == 1) return noteOfTask(*tasks.front());
  const auto* const wantedText = std::get_if<TaskText>(&selector);
  const std::string shown =
      wantedText ? wantedText->substring : std::get<TaskID>(selector).id.text();
  throw ambiguousNotes(shown, notes.size(), tasks);
}

std::vector<TaskEntry> entriesByLine(std::string_view body, const std::vector<TaskEntry>& stored) {
  std::vector<TaskEntry> entries = deriveTaskEntries(body, stored);
  for (TaskEntry& entry : entries) entry.hash.reset();
  return entries;
}

std::optional<size_t> locateTaskLine(std::string_view body, const std::vector<TaskEntry>& stored,
                                     const UUID& id) {
  const std::vector<TaskEntry> current = entriesByLine(body, stored);
  const auto place = entryIndexOf(id, current, stored);
  if (!place) return std::nullopt;
  return static_cast<size_t>(current[*place].paragraphIndex);
}

// --- Changing ------------------------------------------------------------------------------------

UUID transformSelectedTask(const ResolvedNote& note, const TaskSelector& selector,
                           const LineTransform& transform) {
  return changeSelected(
      note, selector, [&](std::string& body, const std::vector<TaskEntry>& entries, size_t chosen) {
        const TextRange line = taskLineRange(body, entries[chosen].paragraphIndex);
        body.replace(line.start, line.length(), transform(line.of(body)));
      });
}

UUID removeSelectedTask(const ResolvedNote& note, const TaskSelector& selector) {
  return changeSelected(
      note, selector, [](std::string& body, std::vector<TaskEntry>& entries, size_t chosen) {
        const TextRange line = taskLineRange(body, entries[chosen].paragraphIndex);
        if (line.end < body.size()) {
          body.erase(line.start, line.length() + 1);
        } else {
          body.erase(line.start == 0 ? 0 : line.start - 1);
        }
        entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(chosen));
        for (size_t i = chosen; i < entries.size(); ++i) --entries[i].paragraphIndex;
      });
}

UUID appendTask(const ResolvedNote& note, const std::string& line) {
  requireReadableBlock(note.url);
  const UUID id = UUID::random();
  NoteChange change;
  change.documentTransform = [&](std::string& body, LKFileFrontMatter& block) {
    std::vector<TaskEntry> entries = entriesByLine(body, block.taskEntries);
    if (!body.empty() && !body.ends_with('\n')) body += '\n';
    const auto index = static_cast<int>(std::ranges::count(body, '\n'));
    body.append(line).append("\n");
    entries.push_back({index, id, std::nullopt});
    block.taskEntries = std::move(entries);
  };
  writeNotes([&] { LKNoteFileService::updateNote(note.url, change); });
  return id;
}

}  // namespace lk
