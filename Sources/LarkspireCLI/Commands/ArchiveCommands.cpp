#include "LarkspireCLI/Commands/ArchiveCommands.h"

#include "LKCore/NoteRepository/LKNoteFileService.h"
#include "LarkspireCLI/Support/NoteWriting.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/RequiredNote.h"

namespace lk {

namespace {

void changeArchiveState(const GlobalOptions& options, const NoteReference& reference,
                        const NoteChange& change, const std::string& report) {
  const NoteInCollection found =
      requireNote(options, reference, "Provide a note title or --id UUID.");
  requireWritable(found.collection);
  requireReadableBlock(found.note.url);
  writeNotes([&] { LKNoteFileService::updateNote(found.note.url, change); });
  printMessage(options, report + found.note.title);
}

}  // namespace

void ArchiveCommand::declare(ArgumentList& arguments) {
  note.declare(arguments);
}

void ArchiveCommand::run() {
  NoteChange change;
  change.propertyUpdates["status"] = "archived";
  changeArchiveState(options, note, change, "Archived: ");
}

void UnarchiveCommand::declare(ArgumentList& arguments) {
  note.declare(arguments);
}

void UnarchiveCommand::run() {
  NoteChange change;
  change.blockTransform = LKNoteFileService::bringBack;
  changeArchiveState(options, note, change, "Unarchived: ");
}

}  // namespace lk
