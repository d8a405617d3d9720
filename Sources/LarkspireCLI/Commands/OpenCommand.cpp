#include "LarkspireCLI/Commands/OpenCommand.h"

#include <filesystem>

#include "LKCore/DailyNotes/LKDailyNoteService.h"
#include "LKCore/Platform/Files.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/DailyBlockWriter.h"
#include "LarkspireCLI/Support/DeepLink.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/RequiredNote.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

UUID dailyNoteOf(Day day, const fs::path& collection) {
  const fs::path url = LKDailyNoteService::dailyNoteURL(day, collection);
  if (!nameIsTaken(url)) DailyBlockWriter::requireWritableDailyNotes(collection);
  DailyBlockWriter::writeDailyNote(
      [&] { LKDailyNoteService::createIfNeeded(day, collection, ""); });
  const auto id = NoteFinder::identityOf(url);
  if (!id) throw CLIError::general("Failed to read daily note.");
  return *id;
}

}  // namespace

void OpenCommand::declare(ArgumentList& arguments) {
  note.declare(arguments);
  arguments.flag("--daily", daily, "Open today's daily note.");
}

void OpenCommand::run() {
  if (daily) {
    const fs::path collection = resolvedCollection(options.collection, options.quiet);
    openNoteIn(collection, dailyNoteOf(Day::local(Instant::now()), collection));
  } else {
    const auto [collection, found] =
        requireNote(options, note, "Provide a note title, --id UUID, or --daily.");
    openNoteIn(collection, found.id);
  }
  printMessage(options, "Opened in Larkspire.");
}

}  // namespace lk
