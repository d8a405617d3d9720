#include "LarkspireCLI/Commands/RestoreCommand.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKNoteFilename.h"
#include "LKCore/Platform/Files.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/NoteFinder.h"
#include "LarkspireCLI/Support/NoteMover.h"
#include "LarkspireCLI/Support/NoteWriting.h"
#include "LarkspireCLI/Support/Output.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

std::vector<fs::path> notesOf(const fs::path& trash) {
  // A trash that cannot be read is not an empty one.
  std::error_code error;
  const fs::directory_iterator entries(trash, error);
  if (error && error.value() != ENOENT) {
    throw CLIError::general("Could not read " + FileError(trash, error.value()).description());
  }
  return NoteFinder::notesDirectlyIn(trash);
}

fs::path trashedNote(const std::vector<fs::path>& trashed,
                     const std::optional<std::string>& reference,
                     const std::optional<std::string>& id) {
  const auto wanted = id ? UUID::parse(*id) : std::nullopt;
  for (const fs::path& url : trashed) {
    const auto identity = NoteFinder::identityOf(url);
    const bool fits =
        id ? wanted && identity == wanted
           : identity && text::equalIgnoringCase(LKNoteFilename::displayName(url), *reference);
    if (fits) return url;
  }
  throw CLIError::noteNotFound(id ? *id : *reference);
}

}  // namespace

void RestoreCommand::declare(ArgumentList& arguments) {
  arguments.positional("reference", reference, "Trashed note title.").completion =
      Completion::trashedTitle;
  arguments.option("--id", id, "Look up the trashed note by UUID.").valueName = "uuid";
}

void RestoreCommand::run() {
  const fs::path collection = resolvedCollection(options.collection, options.quiet);
  const std::vector<fs::path> trashed = notesOf(collection / ".trash");
  if (trashed.empty()) throw CLIError::general("Trash is empty — nothing to restore.");
  if (!reference && !id) throw CLIError::general("Provide a trashed note title or --id UUID.");
  const fs::path note = trashedNote(trashed, reference, id);
  requireWritable(collection);
  fs::path restored;
  writeNotes([&] { restored = NoteMover::moveInto(collection, note); });
  printMessage(options, "Restored: " + LKNoteFilename::displayName(restored));
}

}  // namespace lk
