#include "LarkspireCLI/Commands/ShowCommand.h"

#include <algorithm>
#include <filesystem>

#include "LKCore/Base/Json.h"
#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/NoteFiles/LKSyncError.h"
#include "LKCore/Platform/Files.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CacheReader.h"
#include "LarkspireCLI/Support/NoteWriting.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/OutputFormatter.h"
#include "LarkspireCLI/Support/RequiredNote.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

struct ShownNote {
  LKParsedDocument document;
  std::string title;
  FileInfo info;
};

ShownNote load(const ResolvedNote& note) {
  ShownNote shown;
  shown.title = note.title;
  std::string bytes;
  try {
    bytes = readFile(note.url);
    shown.info = fileInfo(note.url).value_or(FileInfo{});
  } catch (const FileError& error) {
    throw CLIError::general("Could not read " + error.description());
  }
  shown.info.size = bytes.size();
  if (!text::isValidUTF8(bytes)) throw notANote(note.url, bytes);
  try {
    shown.document = parseDocument(bytes);
  } catch (const LKSyncError&) {
    throw notANote(note.url, bytes);
  }
  return shown;
}

std::string jsonOf(const ShownNote& note, bool withBody) {
  const LKFileFrontMatter& block = note.document.frontMatter;
  Json json = {{"id", block.id.text()},
               {"title", note.title},
               {"created", formatISO8601(block.created)},
               {"modified", formatISO8601(note.info.modified)},
               {"size", note.info.size},
               {"properties", Json(block.userProperties)}};
  if (withBody) json["body"] = note.document.body;
  return printJson(json);
}

std::string headOf(const ShownNote& note) {
  const LKFileFrontMatter& block = note.document.frontMatter;
  std::string head = "id: " + block.id.text() + "\ncreated: " + formatISO8601(block.created) +
                     "\nsize: " + std::to_string(note.info.size) + " bytes\ntitle: " + note.title;
  if (block.dailyDate) head += "\nlk-daily: " + LKDateOnly::text(*block.dailyDate);
  for (const auto& [key, value] : block.userProperties) {
    head.append("\n").append(key).append(": ").append(value);
  }
  return head;
}

// The body as it stands; a line feed only where it ends without one.
void printBody(const std::string& body) {
  if (body.ends_with('\n')) {
    printText(body);
  } else {
    printLine(body);
  }
}

std::string tasksOf(const ResolvedNote& note, bool asJSON) {
  CacheReader cache(LKParts::tasks);
  const LKNote* row = cache.fetchNote(note.id);
  std::vector<LKTask*> tasks = row != nullptr ? row->tasks : std::vector<LKTask*>();
  std::ranges::stable_sort(tasks, {}, &LKTask::paragraphIndex);
  return OutputFormatter::formatTaskList(tasks, asJSON, Terminal::ofStandardOutput());
}

std::string backlinksOf(const ResolvedNote& note, bool asJSON) {
  CacheReader cache(LKParts::links);
  return OutputFormatter::formatBacklinks(cache.fetchBacklinks(note.id), note.title, asJSON);
}

}  // namespace

void ShowCommand::declare(ArgumentList& arguments) {
  note.declare(arguments);
  arguments.flag("--properties", properties, "Show only front matter / properties.");
  arguments.flag("--body", body, "Show only body (no front matter).");
  arguments.flag("--tasks", tasks, "Show tasks in the note.");
  arguments.flag("--backlinks", backlinks, "Show notes that link to this one.");
}

void ShowCommand::run() {
  const NoteInCollection found = requireNote(options, note, "Provide a note title or --id UUID.");
  const ShownNote shown = load(found.note);
  if (tasks || backlinks) {
    printLine(tasks ? tasksOf(found.note, options.json) : backlinksOf(found.note, options.json));
    return;
  }
  if (options.json) {
    printLine(jsonOf(shown, !properties));
    return;
  }
  if (body && !properties) {
    printBody(shown.document.body);
    return;
  }
  printLine(headOf(shown));
  if (properties) return;
  printLine("");
  printBody(shown.document.body);
}

}  // namespace lk
