#include "LarkspireCLI/Commands/DailyCommands.h"

#include <filesystem>

#include "LKCore/Base/Text.h"
#include "LKCore/DailyNotes/DailyNoteBlocks.h"
#include "LKCore/DailyNotes/LKDailyNoteService.h"
#include "LKCore/NoteFiles/LKNoteFilename.h"
#include "LKCore/Platform/Files.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CacheReader.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/DailyBlockWriter.h"
#include "LarkspireCLI/Support/DailyNoteSeed.h"
#include "LarkspireCLI/Support/DeepLink.h"
#include "LarkspireCLI/Support/NoteFinder.h"
#include "LarkspireCLI/Support/NoteWriting.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/ShownNote.h"
#include "LarkspireCLI/Support/StandardInput.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

// Without an index every list would be empty, and refreshing a block would take away what is there.
void requireIndex(CacheReader& cache) {
  if (cache.container() == nullptr) {
    throw CLIError::general("The collection's notes could not be read.");
  }
}

CLIError noDailyNote(Day day, Instant now) {
  return CLIError::noteNotFound(LKDailyNoteService::spokenName(day, now))
      .withHint("Make it with `lk daily show --create --date " + LKDateOnly::text(day) + "`.");
}

void showNote(const DailyShowCommand& command, const fs::path& collection, const fs::path& url) {
  const ShownNote shown = loadNote(url, LKNoteFilename::displayName(url));
  const UUID& id = shown.document.frontMatter.id;
  if (command.open) openNoteIn(collection, id);
  if (command.tasks) {
    printLine(formatTasksOf(id, command.options.json));
  } else if (command.open) {
    printMessage(command.options, "Opened in Larkspire.");
  } else if (command.options.json) {
    printLine(jsonOf(shown, true));
  } else {
    printBody(shown.document.body);
  }
}

std::string messageOf(DailyBlockWriter::TaskBlock outcome, Day day, Instant now) {
  const std::string name = LKDailyNoteService::spokenName(day, now);
  switch (outcome) {
    case DailyBlockWriter::TaskBlock::none:
      return "No overdue or due-today tasks for " + LKDateOnly::text(day);
    case DailyBlockWriter::TaskBlock::removed:
      return "Removed the task block from " + name + " — nothing outstanding.";
    case DailyBlockWriter::TaskBlock::updated:
      return "Updated task block in " + name;
  }
  return "";
}

}  // namespace

void DailyShowCommand::declare(ArgumentList& arguments) {
  arguments.option("--date", date, "Date (YYYY-MM-DD, 'today', 'yesterday', or natural language).");
  arguments.flag("--create", create, "Create today's daily note if it doesn't exist.");
  arguments.flag("--tasks", tasks, "Show tasks from the daily note.");
  arguments.flag("--open", open, "Open in Larkspire.");
}

void DailyShowCommand::run() {
  const fs::path collection = resolvedCollection(options.collection, options.quiet);
  const Instant now = Instant::now();
  const Day day = DailyBlockWriter::targetDate(date, now);
  const fs::path url = LKDailyNoteService::dailyNoteURL(day, collection);
  if (!nameIsTaken(url)) {
    if (!create) throw noDailyNote(day, now);
    DailyBlockWriter::createNote(day, collection);
    const std::string message = "Created daily note: " + LKDailyNoteService::filename(day);
    if (!tasks && !open) {
      printMessage(options, message);
      return;
    }
    printNote(options, message);  // the result is what else was asked for
  }
  showNote(*this, collection, url);
}

void DailyAppendCommand::declare(ArgumentList& arguments) {
  arguments.positional("text", text, "Text to append. Read from standard input when omitted.");
  arguments.option("--date", date, "Date for the daily note (default: today).");
}

void DailyAppendCommand::run() {
  const fs::path collection = resolvedCollection(options.collection, options.quiet);
  const Day day = DailyBlockWriter::targetDate(date);
  DailyBlockWriter::requireWritableDailyNotes(collection);
  const std::string added = text ? *text : pipedInput().value_or("");
  if (text::trimmed(added).empty()) {
    throw CLIError::general("Provide text to append or pipe from stdin.");
  }
  const fs::path url = LKDailyNoteService::dailyNoteURL(day, collection);
  if (nameIsTaken(url)) requireReadableBlock(url);
  const std::string seed = dailyNoteSeedBodyIfMissing(day, collection);
  DailyBlockWriter::writeDailyNote(
      [&] { LKDailyNoteService::appendText(added, day, collection, seed, false); });
  printMessage(options, "Appended to daily note: " + LKDailyNoteService::filename(day));
}

void DailyOverdueCommand::declare(ArgumentList& arguments) {
  arguments.option("--date", date, "Date for the daily note (default: today).");
}

void DailyOverdueCommand::run() {
  const fs::path collection = resolvedCollection(options.collection, options.quiet);
  const Instant now = Instant::now();
  const Day day = DailyBlockWriter::targetDate(date, now);
  DailyBlockWriter::requireWritableDailyNotes(collection);
  CacheReader cache(LKDailyNoteService::taskSectionParts);
  requireIndex(cache);
  const fs::path note = DailyBlockWriter::requireNote(day, collection);
  const auto outcome = DailyBlockWriter::refreshTaskBlock(
      note, LKDailyNoteService::taskSections(day, cache.fetchTasks()));
  printMessage(options, messageOf(outcome, day, now));
}

void DailySummaryCommand::declare(ArgumentList& arguments) {
  arguments.option("--date", date, "Date for the daily note (default: today).");
}

void DailySummaryCommand::run() {
  const fs::path collection = resolvedCollection(options.collection, options.quiet);
  const Instant now = Instant::now();
  const Day day = DailyBlockWriter::targetDate(date, now);
  const fs::path note = DailyBlockWriter::requireNote(day, collection);
  CacheReader cache(LKParts::none);
  requireIndex(cache);
  DailyBlockWriter::refreshActivityBlock(
      note, LKDailyNoteService::activityBlock(day, cache.fetchNotes(), NoteFinder::identityOf(note),
                                              now));
  printMessage(options, "Updated activity summary in " + LKDailyNoteService::spokenName(day, now));
}

}  // namespace lk
