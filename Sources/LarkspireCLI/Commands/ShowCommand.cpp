#include "LarkspireCLI/Commands/ShowCommand.h"

#include <string>

#include "LarkspireCLI/Support/CacheReader.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/OutputFormatter.h"
#include "LarkspireCLI/Support/RequiredNote.h"
#include "LarkspireCLI/Support/ShownNote.h"

namespace lk {

namespace {

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
  const ShownNote shown = loadNote(found.note.url, found.note.title);
  if (tasks || backlinks) {
    printLine(tasks ? formatTasksOf(found.note.id, options.json)
                    : backlinksOf(found.note, options.json));
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
