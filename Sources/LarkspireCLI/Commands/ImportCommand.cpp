#include "LarkspireCLI/Commands/ImportCommand.h"

#include <algorithm>
#include <cerrno>
#include <functional>
#include <iterator>
#include <limits>
#include <optional>
#include <system_error>
#include <utility>

#include "LKCore/Attachments/LKAttachmentTypes.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Import/LKImportEngine.h"
#include "LKCore/Import/LKObsidianImporter.h"
#include "LKCore/NoteFiles/LKForeignBlock.h"
#include "LKCore/NoteRepository/LKNoteFileService.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Platform/FolderWalk.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/KeptNotes.h"
#include "LarkspireCLI/Support/NoteWriting.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/Progress.h"
#include "LarkspireCLI/Support/TagArgument.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

constexpr const char* kCannotImport = "This collection is read-only. Notes cannot be created.";

std::string shown(const fs::path& name) {
  return text::escapedInvalid(name.filename().string());
}

void printSkipped(const fs::path& name, const char* why) {
  printError(std::string("skip (") + why + "): " + shown(name));
}

void printUnreadable(const fs::path& name) {
  printSkipped(name, "unreadable");
}

// --- What there is to import ---------------------------------------------------------------------

struct SourceFiles {
  std::vector<fs::path> texts;    // md and txt, sorted
  std::vector<fs::path> bundles;  // sorted
  bool isEmpty = true;            // also of what cannot be read
};

// The files that may be imported; what stands under such a name and is no file is told at once.
class SourceListing {
 public:
  explicit SourceListing(const fs::path& folder) : folder_(folder) {}

  SourceFiles below() {
    WalkOptions options;
    options.onProblem = [this](const WalkProblem& problem) {
      if (problem.relativePath.empty()) fail(problem.code);
      printUnreadable(problem.relativePath);
    };
    walkFolder(
        folder_,
        [&](const WalkEntry& entry) {
          using Kind = WalkEntry::Kind;
          const fs::file_type type = entry.kind == Kind::file      ? fs::file_type::regular
                                     : entry.kind == Kind::package ? fs::file_type::directory
                                                                   : fs::file_type::unknown;
          add(folder_ / entry.relativePath, type);
          return WalkStep::proceed;
        },
        options);
    return sorted();
  }

  SourceFiles direct() {
    std::error_code error;
    fs::directory_iterator entry(folder_, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
      std::error_code unknown;
      if (entry->path().filename().native().starts_with('.')) continue;
      add(entry->path(), entry->symlink_status(unknown).type());
    }
    if (error) fail(error.value());
    return sorted();
  }

 private:
  [[noreturn]] void fail(int code) const {
    throw CLIError::general("Could not read " + FileError(folder_, code).description());
  }

  void add(const fs::path& file, fs::file_type type) {
    const std::string extension = text::lowercased(LKAttachmentTypes::pathExtension(file.native()));
    const bool isBundle = extension == "textbundle";
    if (!isBundle && extension != "md" && extension != "txt") return;
    const bool isFolder = type == fs::file_type::directory;
    if (isFolder && !isBundle) return;
    files_.isEmpty = false;
    const bool isRight = isBundle ? isFolder : type == fs::file_type::regular;
    if (!isRight || !text::isValidUTF8(file.filename().native())) {
      printUnreadable(file);
      return;
    }
    (isBundle ? files_.bundles : files_.texts).push_back(file);
  }

  SourceFiles sorted() {
    std::ranges::sort(files_.texts, {}, &fs::path::native);
    std::ranges::sort(files_.bundles, {}, &fs::path::native);
    return std::move(files_);
  }

  const fs::path& folder_;
  SourceFiles files_;
};

// --- Notes ---------------------------------------------------------------------------------------

// Nothing when the file cannot be read as UTF-8.
std::optional<NewNote> noteFrom(const fs::path& file, const std::vector<std::string>& tags) {
  std::string bytes;
  try {
    bytes = readFileItself(file, std::numeric_limits<uint64_t>::max());
  } catch (const FileError&) {
    return std::nullopt;
  }
  if (!text::isValidUTF8(bytes)) return std::nullopt;
  static constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  std::string_view content = bytes;
  if (content.starts_with(kByteOrderMark)) content.remove_prefix(kByteOrderMark.size());
  const StrippedDocument document = stripForeignFrontMatter(content);
  NewNote note;
  note.title = LKImportEngine::sanitizeFilename(document.title.value_or(file.stem().string()));
  // Without the blank lines that stood behind the block: whoever reads the note drops them too.
  note.body = text::trimmedLeading(
      LKImportEngine::appendTagsToBody(text::trimmedLeading(document.body), tags));
  return note;
}

// What became of the text files.
struct CreatedNotes {
  size_t count = 0;
  LKImportEngine::UnwrittenNotes unwritten;
};

// The end of every import: a script hears by the status that the collection did not take it all.
void refuse(const LKImportEngine::UnwrittenNotes& unwritten) {
  if (unwritten.count == 0) return;
  throw CLIError::writeFailed(countOf(unwritten.count, "file") +
                              " could not be imported: " + unwritten.firstReason);
}

// Goes on after a file that fails.
void createNotes(const std::vector<fs::path>& files, const fs::path& collection,
                 const std::vector<std::string>& tags, Progress& progress, CreatedNotes& created) {
  FreeNames names(collection);
  for (size_t i = 0; i < files.size(); ++i) {
    const std::optional<NewNote> note = noteFrom(files[i], tags);
    const char* problem = note ? nullptr : "unreadable";
    try {
      if (note) LKNoteFileService::createNote(*note, names);
    } catch (const FileError& error) {
      problem = "not written";
      created.unwritten.add({1, error.description()});
    }
    if (problem == nullptr) {
      ++created.count;
    } else {
      progress.clear();
      printSkipped(files[i], problem);
    }
    progress.show(i + 1, files.size());
  }
  if (created.count > 0) flushFileSystem(collection);
}

LKImportEngine::ImportContext contextOf(const fs::path& collection) {
  LKImportEngine::ImportContext context;
  context.destinationFolder = collection;
  context.attachmentsDirectory = collection / ".attachments";
  return context;
}

void printProblems(const std::vector<LKImportEngine::ImportProblem>& problems) {
  for (const LKImportEngine::ImportProblem& problem : problems) {
    printError(problem.filename + ": " + problem.reason);
  }
}

bool isVault(const fs::path& folder) {
  std::error_code error;
  return fs::is_directory(folder / LKObsidianImporter::settingsFolder, error);
}

[[noreturn]] void throwNothingFound(const std::string& directory) {
  throw CLIError::general("No .md or .txt files found in " + directory);
}

}  // namespace

void ImportCommand::declare(ArgumentList& arguments) {
  arguments.positional("directory", directory, "Source directory.").completion = Completion::folder;
  arguments.option("--tag", tags, "Tag to add to every imported note (repeatable).").completion =
      Completion::tag;
  arguments.flag("--recursive", recursive, "Recurse into subdirectories.");
  arguments.flag("--dry-run", dryRun, "List what would be imported without writing.");
  arguments.flag("--vault", vault,
                 "Import the folder as an Obsidian vault, with its attachments and tags.");
}

void ImportCommand::run() {
  const fs::path collection = resolvedCollection(options.collection, options.quiet);
  std::error_code error;
  if (!fs::is_directory(directory, error)) {
    throw CLIError::general("Not a directory: " + directory);
  }
  const fs::path source = resolved(directory);
  if (vault) {
    if (!isVault(source)) {
      throw CLIError::general("Not a vault: " + directory + " has no folder \"" +
                              LKObsidianImporter::settingsFolder + "\".");
    }
    importVault(source, collection);
    return;
  }
  if (isVault(source)) {
    printNote(options, "Note: " + directory +
                           " is a vault. Its attachments, folders and front matter tags are left "
                           "behind; --vault brings them along.");
  }
  importFiles(source, collection);
}

void ImportCommand::list(const std::vector<fs::path>& files) const {
  for (const fs::path& file : files) {
    const std::string line = "would import: " + shown(file);
    if (options.json) {
      printNote(options, line);  // standard output is one document then
    } else {
      printLine(line);
    }
  }
  printMessage(options, "Would import " + countOf(files.size(), "note") + ".");
}

void ImportCommand::importFiles(const fs::path& source, const fs::path& collection) {
  SourceListing listing(source);
  SourceFiles files = recursive ? listing.below() : listing.direct();
  if (files.isEmpty) throwNothingFound(directory);
  std::vector<std::string> readableTags;
  for (const std::string& tag : tags) readableTags.push_back(TagArgument::readable(tag));
  if (dryRun) {
    std::ranges::copy(files.bundles, std::back_inserter(files.texts));
    std::ranges::sort(files.texts, {}, &fs::path::native);
    list(files.texts);
    return;
  }
  requireWritable(collection, kCannotImport);
  CreatedNotes created;
  LKImportEngine::ImportBatchResult result;
  writeNotes(
      [&] {
        Progress progress("Importing", options.quiet);
        createNotes(files.texts, collection, readableTags, progress, created);
        if (files.bundles.empty()) return;
        LKImportEngine::ImportContext context = contextOf(collection);
        result = LKImportEngine::performImport(
            files.bundles, context, {.appendTags = readableTags},
            [&](size_t done, size_t total) { progress.show(done, total); });
      },
      kCannotImport);
  printProblems(result.errors);
  printMessage(options, "Imported " + countOf(created.count + result.importedCount, "note") + ".");
  created.unwritten.add(result.unwritten);
  refuse(created.unwritten);
}

void ImportCommand::importVault(const fs::path& source, const fs::path& collection) {
  namespace importer = LKObsidianImporter;
  std::vector<LKImportEngine::ImportProblem> unreadable;
  const std::vector<fs::path> paths = importer::notePaths(source, unreadable);
  if (paths.empty()) {
    printProblems(unreadable);  // why there is nothing, perhaps
    throwNothingFound(directory);
  }
  std::vector<std::string> readableTags;
  for (const std::string& tag : tags) readableTags.push_back(TagArgument::readable(tag));
  if (dryRun) {
    printProblems(unreadable);
    list(paths);
    return;
  }
  requireWritable(collection, kCannotImport);
  unreadable.clear();
  const auto entries = importer::collectEntries(source, unreadable);
  const std::vector<fs::path> images = importer::collectImages(source);
  const auto plan = importer::planAttachments(entries, source, images);
  LKImportEngine::ImportBatchResult result;
  writeNotes(
      [&] {
        Progress progress("Importing", options.quiet);
        LKImportEngine::ImportContext context = contextOf(collection);
        result = importer::performImport(
            entries, plan.sources, source, {.appendTags = readableTags}, context,
            [&](size_t done, size_t total) { progress.show(done, total); });
      },
      kCannotImport);
  printProblems(unreadable);
  printProblems(result.errors);
  const size_t unshown = images.size() - plan.sources.size();
  if (const size_t count = plan.unresolvedCount; count > 0) {
    printNote(options, "Note: " + std::to_string(count) +
                           (count == 1 ? " embed leads to no attachment and stays as it is."
                                       : " embeds lead to no attachment and stay as they are."));
  }
  if (unshown > 0) {
    printNote(options, "Note: " + std::to_string(unshown) +
                           (unshown == 1 ? " file that no note embeds is left behind."
                                         : " files that no note embeds are left behind."));
  }
  printMessage(options, "Imported " + countOf(result.importedCount, "note") + ".");
  refuse(result.unwritten);
}

}  // namespace lk
