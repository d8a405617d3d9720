#include "LarkspireCLI/Commands/BacklinksCommand.h"

#include <filesystem>

#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CacheReader.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/OutputFormatter.h"
#include "LarkspireCLI/Support/RequiredNote.h"

namespace lk {

void BacklinksCommand::declare(ArgumentList& arguments) {
  arguments.positional("reference", reference, "Note title or UUID.").completion =
      Completion::noteTitle;
  arguments.flag("--context", context, "Show the paragraph containing the [[link]].");
}

void BacklinksCommand::run() {
  const std::filesystem::path collection = resolvedCollection(options.collection, options.quiet);
  CacheReader cache(LKParts::links);
  if (cache.container() == nullptr) {
    throw CLIError::general(
        "Backlink queries need an index, and lk couldn't build one from the note files.");
  }
  const ResolvedNote note = requireNoteIn(collection, options, reference, cache);
  const LKNote* row = cache.fetchNote(note);
  const auto links = cache.fetchBacklinks(row != nullptr ? row->id : note.id);
  printLine(OutputFormatter::formatBacklinks(links, note.title, options.json, context));
}

}  // namespace lk
