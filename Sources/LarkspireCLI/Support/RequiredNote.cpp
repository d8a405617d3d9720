#include "LarkspireCLI/Support/RequiredNote.h"

#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CacheReader.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/FileScan.h"
#include "LarkspireCLI/Support/Output.h"

namespace lk {

namespace fs = std::filesystem;

NoteInCollection requireNote(const GlobalOptions& options, const NoteReference& reference,
                             const std::string& missingMessage) {
  const fs::path collection = resolvedCollection(options.collection, options.quiet);
  const auto& [title, id] = reference;
  if (!title && !id) throw CLIError::general(missingMessage);
  // --id is a UUID and nothing else: one that is not fits no note, whatever its title.
  if (id && !UUID::parse(*id)) throw CLIError::noteNotFound(*id);
  return {collection, requireNoteIn(collection, options, id ? *id : *title)};
}

ResolvedNote requireNoteIn(const fs::path& collection, const GlobalOptions& options,
                           const std::string& reference) {
  CacheReader cache(LKParts::none);
  return requireNoteIn(collection, options, reference, cache);
}

ResolvedNote requireNoteIn(const fs::path& collection, const GlobalOptions& options,
                           const std::string& reference, CacheReader& cache) {
  const auto warn = [&](const std::string& message) { printNote(options, message); };
  auto note = NoteFinder::resolve(reference, collection, cache, warn);
  if (!note) throw CLIError::noteNotFound(reference);
  if (isInTrash(note->url, collection)) {
    warn("Note: \"" + note->title + "\" is in the trash. `lk restore` brings it back.");
  }
  return *note;
}

}  // namespace lk
