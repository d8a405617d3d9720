#pragma once

#include <filesystem>
#include <string>

#include "LarkspireCLI/Support/GlobalOptions.h"
#include "LarkspireCLI/Support/NoteFinder.h"
#include "LarkspireCLI/Support/NoteReference.h"

namespace lk {

struct NoteInCollection {
  std::filesystem::path collection;
  ResolvedNote note;
};

// The note that a command is pointed at. Throws CLIError: what resolvedCollection throws, general
// with `missingMessage` when neither title nor --id is given, noteNotFound.
NoteInCollection requireNote(const GlobalOptions& options, const NoteReference& reference,
                             const std::string& missingMessage);

// The note in a collection that is resolved already. Throws CLIError::noteNotFound. With `cache`,
// the index that the command reads anyway helps to find it.
ResolvedNote requireNoteIn(const std::filesystem::path& collection, const GlobalOptions& options,
                           const std::string& reference);
ResolvedNote requireNoteIn(const std::filesystem::path& collection, const GlobalOptions& options,
                           const std::string& reference, CacheReader& cache);

}  // namespace lk
