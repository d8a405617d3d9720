#pragma once

// Brings text from outside into a collection: text and Markdown files and TextBundle packages with
// their assets. It is also the ground on which importers of other systems' notes stand.
//
//     LKImportEngine::ImportContext context;
//     context.destinationFolder = collection;
//     context.attachmentsDirectory = collection / ".attachments";
//     const auto result = LKImportEngine::performImport({"/home/ann/Old notes"}, context);
//     for (const auto& problem : result.errors) tell(problem.filename, problem.reason);
//
// Nothing that is there is ever changed or replaced: a taken name gets a number. A file is whole
// from the moment it has its name, and all of them are safe from a power cut when `performImport`
// returns. What is read is what was named: symbolic links below a folder or in a bundle are not
// followed, and nothing that is no regular file is opened for longer than to see that. All work is
// done on the caller's thread.

#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Time.h"
#include "LKCore/DataModel/LKContext.h"
#include "LKCore/Import/LKImportText.h"
#include "LKCore/Platform/FreeNames.h"
#include "LKCore/Tags/LKTagIconStore.h"

namespace lk::LKImportEngine {

struct ImportProblem {
  std::string filename;
  std::string reason;

  bool operator==(const ImportProblem&) const = default;
};

// Where notes go, and what one batch remembers from file to file. Made anew for each batch.
struct ImportContext {
  std::filesystem::path destinationFolder;
  std::optional<std::filesystem::path> attachmentsDirectory;  // without one, no attachments
  LKContext* context = nullptr;  // the open index of the collection; null makes files alone
  std::map<std::string, LKTag*> tagsByText = {};  // filled as tags are met; keys are composed
  // Where the note file of that name ("Plan.md") goes; in the destination folder without it.
  std::function<std::filesystem::path(const std::string& fileName)> documentURLProvider = {};

  // The engine's own.
  std::map<std::filesystem::path, FreeNames> names = {};
  std::optional<std::map<std::string, LKTagIcon>> tagIcons = {};
  std::vector<LKNote*> importedNotes = {};
};

struct ImportOptions {
  std::vector<std::string> appendTags = {};         // on one last line of each note
  bool collapseParagraphs = false;                  // of plain files
  std::optional<std::string> inlineTagPrefix = {};  // e.g. "imported/"
};

// The notes that could be read and that the collection did not take: the disk is full, say.
struct UnwrittenNotes {
  size_t count = 0;
  std::string firstReason = {};

  void add(const UnwrittenNotes& more) {
    if (count == 0) firstReason = more.firstReason;
    count += more.count;
  }
  bool operator==(const UnwrittenNotes&) const = default;
};

struct ImportBatchResult {
  size_t importedCount = 0;
  size_t skippedCount = 0;
  UnwrittenNotes unwritten;           // among the skipped
  std::vector<ImportProblem> errors;  // of what was skipped, and of attachments left behind

  bool operator==(const ImportBatchResult&) const = default;
};

// Called after each item.
using ImportProgress = std::function<void(size_t done, size_t total)>;

// Imports files, and folders with all that is in them. A file that fails is told in the result and
// never ends the batch. Throws FileError only when what was written cannot be put on the disk.
ImportBatchResult performImport(const std::vector<std::filesystem::path>& sourceURLs,
                                ImportContext& importContext, const ImportOptions& options = {},
                                const ImportProgress& progress = {});

// The files that the URLs stand for: those under each folder, sorted, hidden ones and packages'
// contents left out; a bundle is one item. A link that is named itself is followed.
std::vector<std::filesystem::path> expandDirectories(
    const std::vector<std::filesystem::path>& urls);

struct ItemResult {
  bool success = false;
  std::vector<ImportProblem> problems;
  UnwrittenNotes unwritten = {};

  bool operator==(const ItemResult&) const = default;
};

ItemResult importPlainTextFile(const std::filesystem::path& url, ImportContext& importContext,
                               const ImportOptions& options = {});
ItemResult importTextBundle(const std::filesystem::path& url, ImportContext& importContext,
                            const ImportOptions& options = {});

// The tags that the bundle's "info.json" lists, readable; none when it cannot be read.
std::vector<std::string> readTextBundleTags(const std::filesystem::path& bundleURL);
// Those of that file's text. Throws JsonError.
std::vector<std::string> tagsOfBundleInfo(std::string_view json);

// --- For importers -------------------------------------------------------------------------------

// The end of every batch: open links are resolved, the index is saved and the disk is flushed.
// Throws FileError as `performImport`.
void finishImport(ImportContext& importContext);

struct ImportedNote {
  std::string body;
  std::string noteTitle;
  std::string baseName;                      // the file is named after it
  std::optional<Instant> createdDate = {};   // now without one
  std::optional<Instant> modifiedDate = {};  // of the file; now without one
  std::optional<Day> dailyNote = {};
};

// Writes the note and, where an index is open, its row with tags, tasks and links, of which the
// links wait for `resolveBacklinkTargets`. The body is stored as a note's reader gives it back.
// Gives the file. Throws FileError; an index that takes no row goes to the log.
std::filesystem::path writeImportedNote(const ImportedNote& note, ImportContext& importContext);

// Points the links of the batch's notes that lead nowhere yet to the notes of their titles.
void resolveBacklinkTargets(ImportContext& importContext);

// A note's name as it may stand on the disk; "Untitled" when nothing is left of it.
std::string sanitizeFilename(std::string_view baseName);

// "BASE.md", or the first free of "BASE 2.md", "BASE 3.md" and so on; never one name twice.
std::string nextAvailableImportName(const std::string& base, FreeNames& names);

// Makes the file, whole or not at all, and sets its modification date when one is given. False
// when the name is taken. Durable at the next flush. Throws FileError.
[[nodiscard]] bool coordinatedWrite(std::string_view data, const std::filesystem::path& url,
                                    const std::optional<Instant>& modificationDate);

// When the file was made, or else last changed; nothing when that cannot be found out.
std::optional<Instant> creationDate(const std::filesystem::path& url);

// --- Attachments ---------------------------------------------------------------------------------

// Extensions of what may be copied, lower-case, without the full stop.
bool isAllowedAttachment(const std::filesystem::path& url);

// Copies the files into the folder, which is there, and gives the names that they have in it. A
// file whose name is taken by the same bytes is there already; other bytes get a number. What is
// not allowed or cannot be copied is left out.
std::map<std::filesystem::path, std::string> copyAttachments(
    const std::vector<std::filesystem::path>& urls, const std::filesystem::path& folder);

// One of many: `names` are the folder's. Throws FileError.
std::string copyAttachment(const std::filesystem::path& url, FreeNames& names);

// What a note writes in a link to the stored file. A name with a number has a blank in it, which
// would end the link, and so would a parenthesis in the "#..." that may stand behind a name.
std::string attachmentReference(std::string_view storedName);

// The names of the attachments' folder, which is made; null when there is none and none can be
// made.
FreeNames* attachmentNames(ImportContext& importContext);

// False also when one of the files cannot be read.
bool sameContents(const std::filesystem::path& a, const std::filesystem::path& b);

// The names of a folder, kept for the batch.
FreeNames& namesIn(const std::filesystem::path& folder, ImportContext& importContext);

}  // namespace lk::LKImportEngine
