#include "LarkspireCLI/Support/ShownNote.h"

#include <algorithm>

#include "LKCore/Base/Json.h"
#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKSyncError.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CacheReader.h"
#include "LarkspireCLI/Support/NoteWriting.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/OutputFormatter.h"

namespace lk {

ShownNote loadNote(const std::filesystem::path& url, const std::string& title) {
  ShownNote shown;
  shown.title = title;
  std::string bytes;
  try {
    bytes = readFile(url);
    shown.info = fileInfo(url).value_or(FileInfo{});
  } catch (const FileError& error) {
    throw CLIError::general("Could not read " + error.description());
  }
  shown.info.size = bytes.size();
  if (!text::isValidUTF8(bytes)) throw notANote(url, bytes);
  try {
    shown.document = parseDocument(bytes);
  } catch (const LKSyncError&) {
    throw notANote(url, bytes);
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

void printBody(const std::string& body) {
  if (body.ends_with('\n')) {
    printText(body);
  } else {
    printLine(body);
  }
}

std::string formatTasksOf(const UUID& note, bool asJSON) {
  CacheReader cache(LKParts::tasks);
  const LKNote* row = cache.fetchNote(note);
  std::vector<LKTask*> tasks = row != nullptr ? row->tasks : std::vector<LKTask*>();
  std::ranges::stable_sort(tasks, {}, &LKTask::paragraphIndex);
  return OutputFormatter::formatTaskList(tasks, asJSON, Terminal::ofStandardOutput());
}

}  // namespace lk
