#pragma once

// Brings a whole vault, a folder of Markdown notes with its attachments, into a collection. Syntax
// that the note dialect does not share is rewritten, and every note gets a tag that keeps the
// vault's folders: "imported/obsidian/Work/Notes".
//
//     std::vector<LKImportEngine::ImportProblem> unreadable;
//     const auto entries = LKObsidianImporter::collectEntries(vault, unreadable);
//     const auto images = LKObsidianImporter::collectImages(vault);
//     LKObsidianImporter::performImport(entries, images, vault, {}, context, {});
//
// Notes keep the names of their files, because links name those; another title goes into the block.
// Fenced code is left as it is. Hidden files and folders, packages and `skipFolders` are no part of
// a vault, symbolic links in it are not followed, and no reference reaches out of it. Time is linear
// in the text, whatever it is.

#include <array>
#include <cstddef>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "LKCore/Base/Time.h"
#include "LKCore/Import/LKImportEngine.h"

namespace lk::LKObsidianImporter {

using LKImportEngine::ImportBatchResult;
using LKImportEngine::ImportContext;
using LKImportEngine::ImportOptions;
using LKImportEngine::ImportProblem;
using LKImportEngine::ImportProgress;

inline constexpr std::array<std::string_view, 5> skipFolders = {".obsidian", ".trash", ".git",
                                                                ".github", "node_modules"};

// The folder in a vault's root that makes it one.
inline constexpr const char* settingsFolder = ".obsidian";

struct ObsidianFrontMatter {
  std::optional<std::string> title = {};
  std::vector<std::string> aliases = {};
  std::vector<std::string> tags = {};  // without "#"
  std::optional<std::string> date = {};
  std::optional<std::string> cssclass = {};

  bool operator==(const ObsidianFrontMatter&) const = default;
};

struct ObsidianEntry {
  std::filesystem::path url;
  std::optional<std::string> folderTag;  // nothing at the vault's root
  std::optional<ObsidianFrontMatter> frontMatter;
  std::string body;

  bool operator==(const ObsidianEntry&) const = default;
};

// --- Notes ---------------------------------------------------------------------------------------

// The paths of the vault's notes, sorted; drawings are none. What cannot be walked is added to
// `errors`.
std::vector<std::filesystem::path> notePaths(const std::filesystem::path& rootURL,
                                             std::vector<ImportProblem>& errors);

// The notes, in the order of their paths. What cannot be read is added to `errors`.
std::vector<ObsidianEntry> collectEntries(const std::filesystem::path& rootURL,
                                          std::vector<ImportProblem>& errors);

// The block and the body of a note; no block and the whole text where none is closed.
std::pair<std::optional<ObsidianFrontMatter>, std::string> parseFile(std::string_view text);

// "2024-03-01", with a time behind "T" or a blank, with seconds or not, in the current time zone;
// or with seconds and a zone. Anything else gives nothing.
std::optional<Instant> parseDate(std::string_view text);

// "Work/Notes" for a note in that folder of the vault.
std::optional<std::string> obsidianTag(const std::filesystem::path& url,
                                       const std::filesystem::path& rootURL);

// --- Attachments ---------------------------------------------------------------------------------

// Every file of the vault that may be an attachment, sorted.
std::vector<std::filesystem::path> collectImages(const std::filesystem::path& rootURL);

// A place in a note that shows a file: "![[key]]", "![[key|...]]" or "![...](key)".
struct AttachmentRef {
  std::string key;               // as written
  std::filesystem::path source;  // one of the candidates
  bool isWiki = false;

  bool operator==(const AttachmentRef&) const = default;
};

struct AttachmentPlan {
  std::vector<std::filesystem::path> sources;  // to copy, each once, sorted
  std::map<std::filesystem::path, std::vector<AttachmentRef>> perNote;
  size_t unresolvedCount = 0;  // places whose file is not there, notes shown in notes among them
};

AttachmentPlan planAttachments(const std::vector<ObsidianEntry>& entries,
                               const std::filesystem::path& rootURL,
                               const std::vector<std::filesystem::path>& candidates);

// Which of the candidate files a reference means. Letters' case and Unicode forms count only where
// the exact path is not there.
class AttachmentIndex {
 public:
  AttachmentIndex(const std::filesystem::path& rootURL,
                  const std::vector<std::filesystem::path>& candidates);

  // For a note at `from`. A reference is percent-decoded; one with "#..." behind the file's name
  // means the file. Null when there is none.
  const std::filesystem::path* resolve(std::string_view reference,
                                       const std::filesystem::path& from) const;

 private:
  const std::filesystem::path* at(const std::filesystem::path& relative) const;
  const std::filesystem::path* ofPath(const std::string& path,
                                      const std::filesystem::path& noteFolder) const;

  std::filesystem::path root_;
  std::optional<std::string> attachmentFolder_;  // as the vault's settings have it
  std::unordered_map<std::string, std::filesystem::path> byPath_;  // exact, below the root
  std::unordered_map<std::string, std::filesystem::path> byTail_;  // keys of paths' last parts
};

// Copies each source once and gives the names in the collection by the sources' file names.
std::map<std::string, std::string, std::less<>> importImages(
    const std::vector<std::filesystem::path>& urls, const std::filesystem::path& folder);

// --- Rewriting -----------------------------------------------------------------------------------

// References as written, or their last path components, to the names in `.attachments`.
using ImageMapping = std::map<std::string, std::string, std::less<>>;

std::string convertImageEmbeds(std::string_view body, const ImageMapping& imageMapping);
std::string rewriteStandardImagePaths(std::string_view body, const ImageMapping& imageMapping);
// "[[Target|shown]]" becomes "[[Target]]".
std::string convertAliasedLinks(std::string_view body);

// --- The import ----------------------------------------------------------------------------------

// Imports the entries with those of the attachments that they show. `imageURLs` are files of the
// vault. A note that fails is told in the result. Throws FileError only when what was written
// cannot be put on the disk.
ImportBatchResult performImport(const std::vector<ObsidianEntry>& entries,
                                const std::vector<std::filesystem::path>& imageURLs,
                                const std::filesystem::path& rootURL, const ImportOptions& options,
                                ImportContext& importContext, const ImportProgress& progress);

}  // namespace lk::LKObsidianImporter
