#include "LarkspireCLI/Commands/OpenCommand.h"

#include <filesystem>

#include "LKCore/Collections/LKCollectionStore.h"
#include "LKCore/DailyNotes/LKDailyNoteService.h"
#include "LKCore/Platform/Files.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/DeepLink.h"
#include "LarkspireCLI/Support/NoteWriting.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/RequiredNote.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

constexpr const char* kCannotCreateDaily =
    "This collection is read-only. Daily notes cannot be created or modified.";

UUID dailyNoteOf(Day day, const fs::path& collection) {
  const fs::path url = LKDailyNoteService::dailyNoteURL(day, collection);
  if (!nameIsTaken(url)) requireWritable(collection, kCannotCreateDaily);
  writeNotes([&] { LKDailyNoteService::createIfNeeded(day, collection, ""); }, kCannotCreateDaily);
  const auto id = NoteFinder::identityOf(url);
  if (!id) throw CLIError::general("Failed to read daily note.");
  return *id;
}

std::optional<UUID> collectionID(const fs::path& folder) {
  const auto record = LKCollectionStore::shared().collectionContaining(folder);
  if (!record) return std::nullopt;
  return record->id;
}

}  // namespace

void OpenCommand::declare(ArgumentList& arguments) {
  note.declare(arguments);
  arguments.flag("--daily", daily, "Open today's daily note.");
}

void OpenCommand::run() {
  if (daily) {
    const fs::path collection = resolvedCollection(options.collection, options.quiet);
    openDeepLink(dailyNoteOf(Day::local(Instant::now()), collection), collectionID(collection));
  } else {
    const auto [collection, found] =
        requireNote(options, note, "Provide a note title, --id UUID, or --daily.");
    openDeepLink(found.id, collectionID(collection));
  }
  printMessage(options, "Opened in Larkspire.");
}

}  // namespace lk
