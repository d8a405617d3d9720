#include "LarkspireCLI/Commands/DeleteCommand.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "LKCore/NoteRepository/LKNoteFileService.h"
#include "LKCore/Platform/Files.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/FileScan.h"
#include "LarkspireCLI/Support/NoteMover.h"
#include "LarkspireCLI/Support/NoteWriting.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/RequiredNote.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

std::vector<fs::path> entriesOf(const fs::path& folder) {
  std::vector<fs::path> entries;
  std::error_code error;
  for (fs::directory_iterator it(folder, error), end; it != end; it.increment(error)) {
    entries.push_back(it->path());
  }
  if (error && error.value() != ENOENT) {
    throw CLIError::writeFailed(FileError(folder, error.value()).description());
  }
  return entries;
}

// What lies behind a link is not the collection's to delete.
void requireOwnFolder(const fs::path& trash) {
  std::error_code ignored;
  if (fs::is_symlink(trash, ignored)) {
    throw CLIError::general(trash.string() +
                            " is a symbolic link to another folder. Nothing was deleted.");
  }
}

void emptyTrashOf(const fs::path& collection, const GlobalOptions& options) {
  const fs::path trash = collection / ".trash";
  const std::vector<fs::path> entries = entriesOf(trash);
  if (entries.empty()) {
    printMessage(options, "Trash is already empty.");
    return;
  }
  requireWritable(collection);
  requireOwnFolder(trash);
  size_t deleted = 0;
  std::string failures;
  for (const fs::path& entry : entries) {
    std::error_code error;
    fs::remove_all(entry, error);
    if (error) {
      failures += "\n  " + FileError(entry, error.value()).description();
    } else {
      ++deleted;
    }
  }
  const std::string report =
      "Emptied trash: " + std::to_string(deleted) + " notes permanently deleted.";
  if (!failures.empty()) {
    throw CLIError::writeFailed(report + " These are still there:" + failures);
  }
  printMessage(options, report);
}

}  // namespace

void DeleteCommand::declare(ArgumentList& arguments) {
  note.declare(arguments);
  arguments.flag("--permanent", permanent, "Permanently delete (skip trash).");
  arguments.flag("--empty-trash", emptyTrash, "Empty the trash directory.");
}

void DeleteCommand::run() {
  if (emptyTrash) {
    emptyTrashOf(resolvedCollection(options.collection, options.quiet), options);
    return;
  }
  const NoteInCollection found =
      requireNote(options, note, "Provide a note title, --id UUID, or --empty-trash.");
  requireWritable(found.collection);
  requireReadableBlock(found.note.url);
  if (permanent) {
    writeNotes([&] { LKNoteFileService::deleteNotePermanently(found.note.url); });
    printMessage(options, "Permanently deleted: " + found.note.title);
    return;
  }
  const fs::path trash = found.collection / ".trash";
  writeNotes([&] {
    createFolders(trash);
    // One that is there already keeps its name.
    if (!isInTrash(found.note.url, found.collection)) NoteMover::moveInto(trash, found.note.url);
  });
  printMessage(options, "Trashed: " + found.note.title);
}

}  // namespace lk
