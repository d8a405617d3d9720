#pragma once

// The two faces of every listing: a JSON document for scripts, whose keys are the fields of the rows
// below in sorted order, and lines for people. Each gives the whole text, without a closing line
// feed.
//
//     printLine(OutputFormatter::formatNoteList(notes, options.json, Terminal::ofStandardOutput()));
//
// An optional field that is not set has no key. On a terminal the lines are columns; see
// TextColumns.h.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Json.h"
#include "LKCore/DataModel/Entities.h"
#include "LarkspireCLI/Support/DateTexts.h"
#include "LarkspireCLI/Support/Terminal.h"

namespace lk {

// Views are into the entity that the row was made of. Dates are ISO 8601.
struct NoteRow {
  UUID id;
  std::string_view title;
  std::string modifiedDate;
  std::string createdDate;
  std::vector<std::string_view> tags;  // sorted
  int activeTaskCount = 0;
  int doneTaskCount = 0;
  int overdueTaskCount = 0;
  bool isFavourite = false;
  bool isTrashed = false;
  const LKNote::Properties& properties;
  std::optional<std::string> fileURL;
};

struct TaskRow {
  UUID id;
  std::string noteTitle;
  std::string_view text;
  std::string_view status;  // "not_started", "in_progress", "done" or "cancelled"
  bool isComplete = false;
  std::optional<std::string> due;   // the day as its line has it, "2026-03-14"
  std::optional<std::string> done;  // likewise
  std::optional<std::string> dueDate;
  std::optional<std::string> doneDate;
  std::optional<std::string> priority;  // "low", "medium" or "high"
  std::optional<std::string> project;
  const std::vector<std::string>& contexts;
};

struct TagRow {
  std::string tag;
  int64_t noteCount = 0;

  bool operator==(const TagRow&) const = default;
};

struct BacklinkRow {
  std::string sourceNoteTitle;
  std::string_view sourceParagraph;
  int sourceParagraphIndex = 0;  // from 0
};

struct PropertyRow {
  std::string name;
  std::string type;
  std::vector<std::string> options;
  bool isRequired = false;
  Instant createdDate;
  int64_t noteCount = 0;
};

struct PropertyDetailRow : PropertyRow {
  std::optional<double> minValue;
  std::optional<double> maxValue;
  std::optional<int64_t> maxLength;
  std::vector<std::string> notes;
};

struct OrphanRow {
  std::string key;
  int64_t noteCount = 0;
  std::vector<std::string> notes;
};

namespace OutputFormatter {

NoteRow noteRow(const LKNote& note, DateTexts& dates);
TaskRow taskRow(const LKTask& task, DateTexts& dates);
// The tags that notes carry which are neither trashed nor archived, and how many of them do.
std::vector<TagRow> tagRows(const std::vector<LKTag*>& tags);

// The title that people read: of a daily note its date, spelled out.
std::string humanTitle(const LKNote& note);

std::string formatNoteList(const std::vector<LKNote*>& notes, bool asJSON,
                           const Terminal& terminal = {});
std::string formatTaskList(const std::vector<LKTask*>& tasks, bool asJSON,
                           const Terminal& terminal = {});
// JSON has the tags with most notes first, the lines are sorted by name.
std::string formatTagList(std::vector<TagRow> tags, bool asJSON);
// Sorted by the linking notes' titles, then by line. JSON always has the paragraphs.
std::string formatBacklinks(std::vector<LKBackLink*> links, const std::string& targetTitle,
                            bool asJSON, bool withParagraphs = true);

std::string formatPropertyList(const std::vector<PropertyRow>& rows, bool asJSON,
                               const Terminal& terminal = {});
std::string formatPropertyDetail(const PropertyDetailRow& row, bool asJSON);
std::string formatOrphanList(const std::vector<OrphanRow>& rows, bool asJSON);

// How a changing command reports.
std::string formatTaskResult(const std::string& message, const std::optional<UUID>& id,
                             bool asJSON);

// The document in the system's form.
std::string jsonEncode(const Json& value);

}  // namespace OutputFormatter

}  // namespace lk
