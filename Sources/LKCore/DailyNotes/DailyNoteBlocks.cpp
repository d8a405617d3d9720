#include "LKCore/DailyNotes/DailyNoteBlocks.h"

#include <algorithm>
#include <compare>
#include <unordered_map>
#include <utility>

#include "LKCore/Base/DatePattern.h"
#include "LKCore/Base/Text.h"
#include "LKCore/DailyNotes/LKDailyNoteService.h"
#include "LKCore/DailyNotes/LKNoIndexRegion.h"
#include "LKCore/LexParse/NoIndexMarkers.h"
#include "LKCore/NoteFiles/LKTaskEntries.h"
#include "LKCore/Tasks/TaskStatus.h"

namespace lk::LKDailyNoteService {

namespace {

struct TitledLine {
  std::string key;  // of the title's place in order
  std::string line;

  auto operator<=>(const TitledLine&) const = default;
};

// Titles are file names and may hold anything: a line break would end the item, and a forged
// marker the region.
std::string asOneLine(std::string_view text) {
  if (!text::isValidUTF8(text)) return asOneLine(text::escapedInvalid(text));
  std::string line;
  for (const std::string_view piece : text::splitLines(text)) {
    if (!line.empty()) line.push_back(' ');
    line.append(piece);
  }
  return std::string(text::trimmedBlanks(line));
}

std::string linkTo(const LKNote* note) {
  const std::string title = note != nullptr ? asOneLine(note->title) : std::string();
  return "[[" + (title.empty() ? "Untitled" : title) + "]]";
}

bool isOutOfSight(const LKNote& note) {
  return note.isTrashed || note.isArchived();
}

// --- Tasks ---------------------------------------------------------------------------------------

bool isListed(const LKTask& task, Day day) {
  const auto status = taskStatus(task.statusRaw);
  if (!task.dateDue || *task.dateDue > day || task.isComplete || (status && isComplete(*status))) {
    return false;
  }
  return task.note == nullptr || (!isOutOfSight(*task.note) && task.note->dailyDate != day);
}

// The lines of tasks in their notes, each of which is split once.
class SourceLines {
 public:
  // Without indentation, so that the list stays one. When the row and the text don't fit together,
  // what the row knows.
  std::string lineOf(const LKTask& task) {
    if (task.note != nullptr) {
      const std::vector<std::string_view>& lines = linesOf(*task.note);
      const auto index = static_cast<size_t>(std::max(task.paragraphIndex, 0));
      if (index < lines.size() && isTaskLine(lines[index])) return asOneLine(lines[index]);
    }
    const TaskStatus status = taskStatus(task.statusRaw).value_or(TaskStatus::notStarted);
    return std::string("- [") + markOf(status) + "] " + asOneLine(task.text) +
           " due:" + LKDateOnly::text(*task.dateDue);
  }

 private:
  const std::vector<std::string_view>& linesOf(const LKNote& note) {
    const auto [found, isNew] = lines_.try_emplace(&note);
    if (isNew) found->second = text::split(note.text, '\n');
    return found->second;
  }

  std::unordered_map<const LKNote*, std::vector<std::string_view>> lines_;
};

std::string taskSection(std::string_view heading, const std::string& items) {
  return items.empty() ? "" : std::string(heading) + "\n\n" + items + "\n";
}

// --- Activity ------------------------------------------------------------------------------------

std::string activitySection(const char* heading, std::vector<TitledLine> lines) {
  if (lines.empty()) return "";
  std::ranges::sort(lines);
  std::string section = heading;
  section += "\n\n";
  for (const TitledLine& each : lines) section += each.line;
  return section + "\n";
}

void addTitled(std::vector<TitledLine>& lines, const LKNote& note) {
  lines.push_back({text::localizedKey(asOneLine(note.title)), "- " + linkTo(&note) + "\n"});
}

std::string dailyHeading(Day date) {
  return "# " + spelledDay(date);
}

// --- Places --------------------------------------------------------------------------------------

std::string_view withoutFinalLineFeeds(std::string_view text) {
  return text.substr(0, text.find_last_not_of('\n') + 1);  // npos + 1 is 0
}

std::string_view withoutFirstLineFeeds(std::string_view text) {
  return text.substr(std::min(text.find_first_not_of('\n'), text.size()));
}

std::string_view lineAt(std::string_view text, size_t start) {
  if (start >= text.size()) return {};
  return text.substr(start, std::min(text.find('\n', start), text.size()) - start);
}

std::string replaced(std::string_view text, TextRange range, std::string_view with) {
  return std::string(text.substr(0, range.start)).append(with).append(text.substr(range.end));
}

// A block right below such a line would be part of what the line opens.
bool opensRegionOrFence(std::string_view line) {
  return opensNoIndexRegion(line) || text::trimmedSpacesTabs(line).starts_with("```");
}

std::string insertedAfterFirstLine(std::string_view body, std::string_view block) {
  std::string_view head = lineAt(body, 0);
  if (opensRegionOrFence(head)) head = {};
  const std::string_view rest = withoutFirstLineFeeds(body.substr(head.size()));
  std::string result(head);
  if (!head.empty()) result += "\n\n";
  result.append(block).append(rest.empty() ? "\n" : "\n\n");
  return result.append(rest);
}

}  // namespace

// --- Texts ---------------------------------------------------------------------------------------

std::string taskSections(Day date, const std::vector<LKTask*>& activeTasks) {
  std::string overdue;
  std::string dueToday;
  SourceLines source;
  for (const LKTask* task : activeTasks) {
    if (!isListed(*task, date)) continue;
    std::string& items = *task->dateDue < date ? overdue : dueToday;
    items += source.lineOf(*task) + " — " + linkTo(task->note) + "\n";
  }
  if (overdue.empty() && dueToday.empty()) return "";
  return std::string(kNoIndexOpening) + "\n" + taskSection(taskBlockHeadings[0], overdue) +
         taskSection(taskBlockHeadings[1], dueToday) + std::string(kNoIndexClosing) + "\n\n";
}

std::string activityBlock(Day forDay, const std::vector<LKNote*>& notes,
                          const std::optional<UUID>& excluding, Instant now) {
  const Instant start = forDay.localStart();
  const Instant end = forDay.adding(1).localStart();
  const auto isOnDay = [&](Instant date) { return start <= date && date < end; };
  std::vector<TitledLine> created;
  std::vector<TitledLine> modified;
  for (const LKNote* note : notes) {
    if (isOutOfSight(*note) || note->dailyDate || note->id == excluding) continue;
    if (isOnDay(note->creationDate)) {
      addTitled(created, *note);
    } else if (isOnDay(note->modifiedDate)) {
      addTitled(modified, *note);
    }
  }
  const bool isEmpty = created.empty() && modified.empty();
  return std::string(kNoIndexOpening) + "\n" + std::string(activityBlockHeading) +
         "\n\n*Activity summary — updated " + formatted(now, "h:mm a", "") + "*\n\n" +
         activitySection("### Created", std::move(created)) +
         activitySection("### Modified", std::move(modified)) +
         (isEmpty ? "*No note activity on this day.*\n\n" : "") + std::string(kNoIndexClosing) +
         "\n";
}

std::string defaultInitialBody(Day date, const std::vector<LKTask*>& activeTasks) {
  return dailyHeading(date) + "\n\n" + taskSections(date, activeTasks);
}

std::string startingBody(Day date, DailySeed seed, const std::vector<LKTask*>& activeTasks,
                         const std::vector<LKNote*>& notes, std::string_view blankSuffix,
                         Instant now) {
  if (seed == DailySeed::blank) return dailyHeading(date).append(blankSuffix);
  std::string body = defaultInitialBody(date, activeTasks);
  if (seed == DailySeed::overdueTasks) return body;
  return body + activityBlock(date.adding(-1), notes, std::nullopt, now);
}

// --- Places --------------------------------------------------------------------------------------

std::optional<TextRange> noIndexBlockRange(std::string_view text, std::string_view heading) {
  const auto markers = LKNoIndexRegion::markers(text);
  for (size_t i = 0; i + 1 < markers.size(); ++i) {
    const bool isClosed = markers[i].opens && !markers[i + 1].opens;
    if (isClosed && text::trimmedBlanks(lineAt(text, markers[i].line.end + 1)) == heading) {
      return TextRange{markers[i].line.start, markers[i + 1].line.end};
    }
  }
  return std::nullopt;
}

std::optional<TextRange> generatedBlockRange(std::string_view text,
                                             std::span<const std::string_view> headings) {
  for (const std::string_view heading : headings) {
    if (const auto range = noIndexBlockRange(text, heading)) return range;
  }
  return std::nullopt;
}

TextRange removalRange(TextRange range, std::string_view text) {
  const size_t start = withoutFinalLineFeeds(text.substr(0, range.start)).size();
  const size_t end = std::min(text.find_first_not_of('\n', range.end), text.size());
  if (start == 0) return {0, end};
  const size_t kept = end == text.size() ? 1 : 2;
  const size_t keptInFront = std::min(kept, range.start - start);
  const size_t keptBehind = std::min(kept - keptInFront, end - range.end);
  return {start + keptInFront, end - keptBehind};
}

// --- Bodies --------------------------------------------------------------------------------------

std::string withTaskBlock(std::string_view body, std::string_view sections) {
  const std::string_view block = withoutFinalLineFeeds(sections);
  const auto range = generatedBlockRange(body, taskBlockHeadings);
  if (range) {
    return block.empty() ? replaced(body, removalRange(*range, body), "")
                         : replaced(body, *range, block);
  }
  return block.empty() ? std::string(body) : insertedAfterFirstLine(body, block);
}

std::string withActivityBlock(std::string_view body, std::string_view block) {
  const std::string_view lines = withoutFinalLineFeeds(block);
  if (const auto range = noIndexBlockRange(body, activityBlockHeading)) {
    return replaced(body, *range, lines);
  }
  std::string result(withoutFinalLineFeeds(body));
  if (!result.empty()) result += "\n\n";
  return result.append(lines).append("\n");
}

}  // namespace lk::LKDailyNoteService
