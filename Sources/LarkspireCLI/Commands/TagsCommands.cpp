#include "LarkspireCLI/Commands/TagsCommands.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iterator>
#include <map>
#include <set>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/NoteRepository/LKFileIndex.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Tags/LKTagExtractor.h"
#include "LKCore/Tags/LKTagNameRules.h"
#include "LKCore/Tags/LKTagRewriter.h"
#include "LKCore/Tags/TagPaths.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CacheReader.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/FileScan.h"
#include "LarkspireCLI/Support/KeptNotes.h"
#include "LarkspireCLI/Support/NoteOrder.h"
#include "LarkspireCLI/Support/NoteWriting.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/OutputFormatter.h"
#include "LarkspireCLI/Support/Progress.h"
#include "LarkspireCLI/Support/TagArgument.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

// What the notes outside the trash say of a tag that is to be renamed.
struct TagUse {
  std::vector<std::string> allTags;  // of all notes, sorted
  std::map<fs::path, std::string>
      files;                         // those that carry the tag or one below it, and their text
  std::vector<fs::path> plainFiles;  // they carry it too, but are no notes
  std::vector<fs::path> otherFiles;  // nobody can tell
  KeptNotes unreadable;
};

std::string cleaned(std::string_view path) {
  return std::string(TagArgument::withoutHash(text::trimmed(path)));
}

void scanFile(TagUse& use, ExtractionResult::Texts& all, const fs::path& file,
              const std::string& tag) {
  std::string bytes = readFile(file);
  if (!text::isValidUTF8(bytes)) {
    use.otherFiles.push_back(file);
    return;
  }
  const auto document = parseDocumentIfValid(bytes);
  const auto tags = LKTagExtractor::extractTags(document ? document->body : bytes);
  if (document) all.insert(tags.begin(), tags.end());
  const bool usesTag = std::ranges::any_of(
      tags, [&](const std::string& each) { return tags::lengthOfTop(each, tag).has_value(); });
  if (!usesTag) return;
  if (document) {
    use.files.emplace(file, std::move(bytes));
  } else {
    use.plainFiles.push_back(file);  // what has no block of ours is not changed
  }
}

TagUse scan(const fs::path& collection, const std::string& tag) {
  TagUse use;
  ExtractionResult::Texts all;
  for (const fs::path& file : LKFileIndex::noteFiles(collection)) {
    if (isInTrash(file, collection)) continue;
    try {
      scanFile(use, all, file, tag);
    } catch (const FileError& error) {
      if (error.code() != ENOENT) use.unreadable.add(file, error);
    }
  }
  use.allTags.assign(all.begin(), all.end());
  return use;
}

}  // namespace

void TagsListCommand::declare(ArgumentList& arguments) {
  arguments.positional("name", name, "Show notes for this tag.").completion = Completion::tag;
  arguments.option("--prefix", prefix, "Filter tags by prefix.");
}

void TagsListCommand::run() {
  const fs::path collection = resolvedCollection(options.collection, options.quiet);
  if (name) {
    printNotes(*name);
    return;
  }
  CacheReader cache(LKParts::tags);
  std::vector<TagRow> rows = cache.container() != nullptr
                                 ? OutputFormatter::tagRows(cache.fetchTags())
                                 : scanTagsFromFiles(collection);
  if (prefix) {
    const std::string beginning = text::caseInsensitiveKey(TagArgument::withoutHash(*prefix));
    std::erase_if(rows, [&](const TagRow& row) {
      return !text::caseInsensitiveKey(row.tag).starts_with(beginning);
    });
  }
  printLine(OutputFormatter::formatTagList(std::move(rows), options.json));
}

void TagsListCommand::printNotes(const std::string& tag) const {
  CacheReader cache(LKParts::tags);
  if (cache.container() == nullptr) {
    throw CLIError::general(
        "Tag lookup needs an index, and lk couldn't build one from the note files.");
  }
  const std::string key = text::caseInsensitiveKey(TagArgument::withoutHash(tag));
  bool isKnown = false;
  std::set<LKNote*> carriers;  // "#Work" and "#work" are one tag to whoever looks it up
  for (const LKTag* each : cache.fetchTags()) {
    if (text::caseInsensitiveKey(each->text) != key) continue;
    isKnown = true;
    std::ranges::copy_if(each->notes, std::inserter(carriers, carriers.end()),
                         [](const LKNote* note) { return !note->isTrashed; });
  }
  if (!isKnown) throw CLIError::general("Tag \"" + tag + "\" not found.");
  std::vector<LKNote*> notes(carriers.begin(), carriers.end());
  sortNotes(notes, NoteOrder::modified);
  printLine(OutputFormatter::formatNoteList(notes, options.json, Terminal::ofStandardOutput()));
}

void TagsRenameCommand::declare(ArgumentList& arguments) {
  Argument& oldPathArgument = arguments.positional(
      "oldPath", oldPath, "Existing tag path, e.g. work/clients (with or without #).");
  oldPathArgument.valueName = "old-path";
  oldPathArgument.completion = Completion::tag;
  arguments.positional("newPath", newPath, "New tag path, e.g. clients.").valueName = "new-path";
  arguments.flag("--merge", merge, "Allow merging into a tag that already exists.");
}

void TagsRenameCommand::run() {
  const fs::path collection = resolvedCollection(options.collection, options.quiet);
  const std::string from = cleaned(oldPath);
  const std::string to = cleaned(newPath);
  if (const auto problem = LKTagNameRules::problem(to)) {
    throw CLIError::general("New tag name: " + *problem);
  }
  if (text::equal(from, to)) throw CLIError::general("The new name is the same as the old one.");
  requireWritable(collection);
  const TagUse use = scan(collection, from);
  tellLeftFiles(options, use.plainFiles, "no front matter of a note that can be read");
  tellLeftFiles(options, use.otherFiles, "no UTF-8 text");
  const std::string advice = "Re-run with --merge to rename the rest.";
  if (use.files.empty()) {
    use.unreadable.refuse("#" + from, advice);
    throw CLIError::general("No note uses #" + from + ".");
  }
  const auto collisions = LKTagRewriter::collisions(from, to, use.allTags);
  if (!collisions.empty() && !merge) {
    throw CLIError::general("#" + collisions.front() + " already exists — renaming would merge #" +
                            from + " into it. Re-run with --merge to do that.");
  }
  KeptNotes kept = use.unreadable;
  Progress progress("Changing notes:", options.quiet);
  const auto changed = LKTagRewriter::renameInFiles(
      use.files, from, to, LKTagRewriter::isPrefix(from, use.allTags),
      LKTagIconStore::ofActiveCollection(),
      [&](const fs::path& url, const Error& error) { kept.add(url, error); },
      [&](size_t done) { progress.show(done, use.files.size()); });
  progress.clear();
  if (kept.empty() || !changed.empty()) {
    printMessage(options, (collisions.empty() ? "Renamed #" : "Merged #") + from + " → #" + to +
                              " in " + countOf(changed.size(), "note") + ".");
  }
  kept.refuse("#" + from, advice);
}

}  // namespace lk
