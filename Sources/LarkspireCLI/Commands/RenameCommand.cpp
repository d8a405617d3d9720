#include "LarkspireCLI/Commands/RenameCommand.h"

#include <filesystem>
#include <system_error>

#include "LKCore/NoteFiles/LKNoteFilename.h"
#include "LKCore/NoteRepository/LKNoteFileService.h"
#include "LKCore/Platform/Files.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/NoteMover.h"
#include "LarkspireCLI/Support/NoteWriting.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/RequiredNote.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

// The same file under two names: a change of case alone where the file system ignores case.
bool isSameFile(const fs::path& a, const fs::path& b) {
  std::error_code ignored;
  return fs::equivalent(a, b, ignored);
}

// The new name first, then the block that follows it; a block that cannot be written takes the
// name back, so that a failed rename changes nothing.
void renameFile(const fs::path& from, const fs::path& to) {
  if (from != to) NoteMover::move(from, to);
  try {
    NoteChange change;
    change.blockTransform = [](LKFileFrontMatter& block) { block.nameLocked = true; };
    LKNoteFileService::updateNote(to, change);
  } catch (const Error&) {
    if (from != to) NoteMover::move(to, from);
    throw;
  }
}

}  // namespace

void RenameCommand::declare(ArgumentList& arguments) {
  arguments.positional("reference", reference, "Current note title or UUID.").completion =
      Completion::noteTitle;
  arguments.positional("newTitle", newTitle, "New title.").valueName = "new-title";
}

void RenameCommand::run() {
  const fs::path collection = resolvedCollection(options.collection, options.quiet);
  const ResolvedNote note = requireNoteIn(collection, options, reference);
  const std::string title = LKNoteFilename::sanitize(newTitle);
  if (title.empty()) throw CLIError::general("Invalid title after sanitisation.");
  requireWritable(collection);
  requireReadableBlock(note.url);
  const fs::path target = note.url.parent_path() / (title + ".md");
  if (nameIsTaken(target) && target != note.url && !isSameFile(target, note.url)) {
    throw CLIError::duplicateTitle(newTitle);
  }
  try {
    writeNotes([&] { renameFile(note.url, target); });
  } catch (const CLIError&) {
    // Somebody took the name since it was looked at.
    if (target != note.url && nameIsTaken(target) && nameIsTaken(note.url)) {
      throw CLIError::duplicateTitle(newTitle);
    }
    throw;
  }
  printMessage(options, "Renamed: " + note.title + " → " + title);
}

}  // namespace lk
