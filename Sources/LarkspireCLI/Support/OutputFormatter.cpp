#include "LarkspireCLI/Support/OutputFormatter.h"

#include <algorithm>
#include <array>
#include <set>
#include <tuple>

#include "LKCore/Base/JsonWriter.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Tasks/LKTaskPriority.h"
#include "LKCore/Tasks/TaskStatus.h"
#include "LarkspireCLI/Support/TextColumns.h"

namespace lk::OutputFormatter {

namespace {

constexpr const char* kUnknownNote = "Unknown";

template <typename Texts>
std::string joinedTexts(const Texts& texts, std::string_view separator) {
  std::string result;
  for (const auto& text : texts) {
    if (!result.empty()) result += separator;
    result += text;
  }
  return result;
}

template <typename Items, typename Write>
std::string jsonArray(const Items& items, const Write& write) {
  std::string out;
  JsonWriter json(out);
  json.beginArray();
  for (const auto& item : items) write(json, item);
  json.endArray();
  return out;
}

template <typename Texts>
void writeTexts(JsonWriter& json, const Texts& texts) {
  json.beginArray();
  for (const auto& text : texts) json.string(text);
  json.endArray();
}

void writeIfSet(JsonWriter& json, std::string_view key, const std::optional<std::string>& value) {
  if (value) json.key(key).string(*value);
}

std::string countOfNotes(int64_t count) {
  return "(" + std::to_string(count) + " notes)";
}

}  // namespace

std::string jsonEncode(const Json& value) {
  try {
    return printJson(value);
  } catch (const Json::exception&) {
    return "{}";
  }
}

// --- Notes ---------------------------------------------------------------------------------------

namespace {

void writeNoteRow(JsonWriter& json, const NoteRow& row) {
  json.beginObject();
  json.key("activeTaskCount").integer(row.activeTaskCount);
  json.key("createdDate").string(row.createdDate);
  json.key("doneTaskCount").integer(row.doneTaskCount);
  writeIfSet(json, "fileURL", row.fileURL);
  json.key("id").string(row.id.text());
  json.key("isFavourite").boolean(row.isFavourite);
  json.key("isTrashed").boolean(row.isTrashed);
  json.key("modifiedDate").string(row.modifiedDate);
  json.key("overdueTaskCount").integer(row.overdueTaskCount);
  json.key("properties").beginObject();
  for (const auto& [key, value] : row.properties) json.key(key).string(value);
  json.endObject();
  writeTexts(json.key("tags"), row.tags);
  json.key("title").string(row.title);
  json.endObject();
}

std::string taskCounts(const LKNote& note) {
  const int total = note.activeTaskCount + note.doneTaskCount;
  if (total == 0) return "";
  std::string text =
      "(" + std::to_string(note.activeTaskCount) + "/" + std::to_string(total) + " tasks";
  if (note.overdueTaskCount > 0) text += ", " + std::to_string(note.overdueTaskCount) + " overdue";
  return text + ")";
}

std::vector<std::string_view> sortedTags(const LKNote& note) {
  std::vector<std::string_view> tags;
  tags.reserve(note.tags.size());
  for (const LKTag* tag : note.tags) tags.emplace_back(tag->text);
  std::ranges::sort(tags);
  return tags;
}

std::string hashTags(const LKNote& note) {
  std::string text;
  for (const std::string_view tag : sortedTags(note)) {
    text.append(text.empty() ? "#" : " #").append(tag);
  }
  return text;
}

}  // namespace

NoteRow noteRow(const LKNote& note, DateTexts& dates) {
  return {.id = note.id,
          .title = note.title,
          .modifiedDate = dates.iso8601(note.modifiedDate),
          .createdDate = dates.iso8601(note.creationDate),
          .tags = sortedTags(note),
          .activeTaskCount = note.activeTaskCount,
          .doneTaskCount = note.doneTaskCount,
          .overdueTaskCount = note.overdueTaskCount,
          .isFavourite = note.isFavourite,
          .isTrashed = note.isTrashed,
          .properties = note.userProperties,
          .fileURL = note.fileURL ? std::optional(fileURL(*note.fileURL)) : std::nullopt};
}

std::string humanTitle(const LKNote& note) {
  return note.dailyDate ? spelledOut(*note.dailyDate) : note.title;
}

std::string formatNoteList(const std::vector<LKNote*>& notes, bool asJSON,
                           const Terminal& terminal) {
  DateTexts dates;
  if (asJSON) {
    return jsonArray(notes, [&](JsonWriter& json, const LKNote* note) {
      writeNoteRow(json, noteRow(*note, dates));
    });
  }
  if (notes.empty()) return "No notes found.";
  TextColumns list;
  for (const LKNote* note : notes) {
    list.add(
        {{humanTitle(*note) + (note->isFavourite ? " *" : ""), TextStyle::bold},
         {dates.localMinute(note->modifiedDate), TextStyle::dim},
         {hashTags(*note), TextStyle::accent},
         {taskCounts(*note), note->overdueTaskCount > 0 ? TextStyle::alert : TextStyle::plain}});
  }
  return list.text(terminal);
}

// --- Tasks ---------------------------------------------------------------------------------------

namespace {

constexpr std::array<std::string_view, 4> kStatusWords = {"not_started", "in_progress", "done",
                                                          "cancelled"};

TaskStatus statusOf(const LKTask& task) {
  return taskStatus(task.statusRaw).value_or(TaskStatus::notStarted);
}

std::optional<std::string> priorityWord(int priority) {
  const std::string token = LKTaskPriority::token(priority);
  return token.empty() ? std::nullopt : std::optional(token.substr(token.find(':') + 1));
}

std::optional<std::string> dayText(const std::optional<Day>& day) {
  return day ? std::optional(LKDateOnly::text(*day)) : std::nullopt;
}

std::optional<std::string> startText(const std::optional<Day>& day, DateTexts& dates) {
  return day ? std::optional(dates.iso8601(day->localStart())) : std::nullopt;
}

void writeTaskRow(JsonWriter& json, const TaskRow& row) {
  json.beginObject();
  writeTexts(json.key("contexts"), row.contexts);
  writeIfSet(json, "done", row.done);
  writeIfSet(json, "doneDate", row.doneDate);
  writeIfSet(json, "due", row.due);
  writeIfSet(json, "dueDate", row.dueDate);
  json.key("id").string(row.id.text());
  json.key("isComplete").boolean(row.isComplete);
  json.key("noteTitle").string(row.noteTitle);
  writeIfSet(json, "priority", row.priority);
  writeIfSet(json, "project", row.project);
  json.key("status").string(row.status);
  json.key("text").string(row.text);
  json.endObject();
}

std::string labelled(std::string_view label, const std::optional<std::string>& value) {
  return value ? std::string(label) + *value : "";
}

TextColumns::Row taskLine(const LKTask& task) {
  const auto contexts =
      task.contexts.empty() ? std::nullopt : std::optional(joinedTexts(task.contexts, ","));
  return {{std::string("[") + markOf(statusOf(task)) + "] " + task.text},
          {labelled("due:", dayText(task.dateDue)), TextStyle::accent},
          {labelled("priority:", priorityWord(task.priority))},
          {labelled("project:", task.project)},
          {labelled("context:", contexts)},
          {task.note != nullptr ? humanTitle(*task.note) : kUnknownNote, TextStyle::dim}};
}

}  // namespace

TaskRow taskRow(const LKTask& task, DateTexts& dates) {
  return {.id = task.id,
          .noteTitle = task.note != nullptr ? task.note->title : kUnknownNote,
          .text = task.text,
          .status = kStatusWords[static_cast<size_t>(statusOf(task))],
          .isComplete = task.isComplete,
          .due = dayText(task.dateDue),
          .done = dayText(task.dateCompleted),
          .dueDate = startText(task.dateDue, dates),
          .doneDate = startText(task.dateCompleted, dates),
          .priority = priorityWord(task.priority),
          .project = task.project,
          .contexts = task.contexts};
}

std::string formatTaskList(const std::vector<LKTask*>& tasks, bool asJSON,
                           const Terminal& terminal) {
  if (asJSON) {
    DateTexts dates;
    return jsonArray(tasks, [&](JsonWriter& json, const LKTask* task) {
      writeTaskRow(json, taskRow(*task, dates));
    });
  }
  if (tasks.empty()) return "No tasks found.";
  TextColumns list;
  for (const LKTask* task : tasks) list.add(taskLine(*task));
  return list.text(terminal);
}

std::string formatTaskResult(const std::string& message, const std::optional<UUID>& id,
                             bool asJSON) {
  if (!asJSON) return message;
  Json result = {{"message", message}};
  if (id) result["id"] = id->text();
  return jsonEncode(result);
}

// --- Tags ----------------------------------------------------------------------------------------

std::vector<TagRow> tagRows(const std::vector<LKTag*>& tags) {
  std::vector<TagRow> rows;
  for (const LKTag* tag : tags) {
    const auto count = std::ranges::count_if(
        tag->notes, [](const LKNote* note) { return !note->isTrashed && !note->isArchived(); });
    if (count > 0) rows.push_back({tag->text, count});
  }
  return rows;
}

std::string formatTagList(std::vector<TagRow> tags, bool asJSON) {
  const auto byName = [](const TagRow& a, const TagRow& b) {
    const int order = text::compareLocalized(a.tag, b.tag);
    return order != 0 ? order < 0 : a.tag < b.tag;
  };
  std::ranges::sort(tags, [&](const TagRow& a, const TagRow& b) {
    if (asJSON && a.noteCount != b.noteCount) return a.noteCount > b.noteCount;
    return byName(a, b);
  });
  if (asJSON) {
    return jsonArray(tags, [](JsonWriter& json, const TagRow& row) {
      json.beginObject();
      json.key("noteCount").integer(row.noteCount);
      json.key("tag").string(row.tag);
      json.endObject();
    });
  }
  if (tags.empty()) return "No tags found.";
  std::vector<std::string> lines;
  for (const TagRow& row : tags) lines.push_back("#" + row.tag + " " + countOfNotes(row.noteCount));
  return joinedTexts(lines, "\n");
}

// --- Backlinks -----------------------------------------------------------------------------------

namespace {

void sortBySource(std::vector<LKBackLink*>& links) {
  const auto file = [](const LKBackLink& link) {
    return link.note != nullptr && link.note->fileURL ? link.note->fileURL->string() : "";
  };
  std::ranges::stable_sort(links, [&](const LKBackLink* a, const LKBackLink* b) {
    if (a->note != b->note) {
      const int order = text::compareLocalized(a->note != nullptr ? a->note->title : kUnknownNote,
                                               b->note != nullptr ? b->note->title : kUnknownNote);
      if (order != 0) return order < 0;
      if (const int place = file(*a).compare(file(*b)); place != 0) return place < 0;
    }
    return std::tie(a->sourceParagraphIndex, a->targetNoteReference) <
           std::tie(b->sourceParagraphIndex, b->targetNoteReference);
  });
}

BacklinkRow backlinkRow(const LKBackLink& link) {
  return {link.note != nullptr ? link.note->title : kUnknownNote, link.sourceParagraph,
          link.sourceParagraphIndex};
}

void writeBacklinkRow(JsonWriter& json, const BacklinkRow& row) {
  json.beginObject();
  json.key("sourceNoteTitle").string(row.sourceNoteTitle);
  json.key("sourceParagraph").string(row.sourceParagraph);
  json.key("sourceParagraphIndex").integer(row.sourceParagraphIndex);
  json.endObject();
}

}  // namespace

std::string formatBacklinks(std::vector<LKBackLink*> links, const std::string& targetTitle,
                            bool asJSON, bool withParagraphs) {
  sortBySource(links);
  if (asJSON) {
    return jsonArray(links, [](JsonWriter& json, const LKBackLink* link) {
      writeBacklinkRow(json, backlinkRow(*link));
    });
  }
  if (links.empty()) return "No notes reference \"" + targetTitle + "\".";
  std::set<const LKNote*> sources;
  std::string lines;
  for (const LKBackLink* link : links) {
    sources.insert(link->note);
    lines += "\n" + (link->note != nullptr ? humanTitle(*link->note) : kUnknownNote) + " (line " +
             std::to_string(link->sourceParagraphIndex + 1) + ")";
    if (withParagraphs) lines += ": " + link->sourceParagraph;
  }
  return std::to_string(sources.size()) + " notes reference \"" + targetTitle + "\":" + lines;
}

// --- Properties ----------------------------------------------------------------------------------

namespace {

Json propertyJson(const PropertyRow& row) {
  return {{"name", row.name},
          {"type", row.type},
          {"options", row.options},
          {"isRequired", row.isRequired},
          {"createdDate", formatISO8601(row.createdDate)},
          {"noteCount", row.noteCount}};
}

}  // namespace

std::string formatPropertyList(const std::vector<PropertyRow>& rows, bool asJSON,
                               const Terminal& terminal) {
  if (asJSON) {
    Json array = Json::array();
    for (const PropertyRow& row : rows) array.push_back(propertyJson(row));
    return jsonEncode(array);
  }
  if (rows.empty()) return "No properties defined.";
  TextColumns list;
  for (const PropertyRow& row : rows) {
    list.add({{row.name, TextStyle::bold},
              {row.type},
              {joinedTexts(row.options, ", "), TextStyle::accent},
              {row.isRequired ? "required" : ""},
              {countOfNotes(row.noteCount), TextStyle::dim}});
  }
  return list.text(terminal);
}

std::string formatPropertyDetail(const PropertyDetailRow& row, bool asJSON) {
  if (asJSON) {
    Json json = propertyJson(row);
    if (row.minValue) json["minValue"] = numberJson(*row.minValue);
    if (row.maxValue) json["maxValue"] = numberJson(*row.maxValue);
    if (row.maxLength) json["maxLength"] = *row.maxLength;
    json["notes"] = row.notes;
    return jsonEncode(json);
  }
  std::string text = "Name: " + row.name + "\nType: " + row.type +
                     "\nCreated: " + formatISO8601(row.createdDate) +
                     "\nUsed by: " + std::to_string(row.noteCount) + " notes";
  if (row.isRequired) text += "\nRequired: yes";
  if (row.minValue) text += "\nMin: " + numberJson(*row.minValue).dump();
  if (row.maxValue) text += "\nMax: " + numberJson(*row.maxValue).dump();
  if (row.maxLength) text += "\nMax len: " + std::to_string(*row.maxLength);
  if (!row.options.empty()) text += "\nOptions: " + joinedTexts(row.options, ", ");
  if (!row.notes.empty()) text += "\nNotes:\n  " + joinedTexts(row.notes, "\n  ");
  return text;
}

std::string formatOrphanList(const std::vector<OrphanRow>& rows, bool asJSON) {
  if (asJSON) {
    Json array = Json::array();
    for (const OrphanRow& row : rows) {
      array.push_back({{"key", row.key}, {"noteCount", row.noteCount}, {"notes", row.notes}});
    }
    return jsonEncode(array);
  }
  if (rows.empty()) return "No orphaned properties found.";
  std::string text =
      std::to_string(rows.size()) + " orphaned property keys (no schema definition):";
  for (const OrphanRow& row : rows) text += "\n" + row.key + " " + countOfNotes(row.noteCount);
  return text;
}

}  // namespace lk::OutputFormatter
