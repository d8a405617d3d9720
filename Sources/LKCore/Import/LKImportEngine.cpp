#include "LKCore/Import/LKImportEngine.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>
#include <utility>

#include "LKCore/Attachments/LKAttachmentTypes.h"
#include "LKCore/Base/Json.h"
#include "LKCore/Base/Log.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Import/LKImportActivity.h"
#include "LKCore/NoteFiles/LKForeignBlock.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Platform/FolderWalk.h"

namespace lk::LKImportEngine {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kBundleExtension = "textbundle";
constexpr std::array<std::string_view, 5> kTextExtensions = {"md", "markdown", "mdown", "txt",
                                                             "text"};
// What another program keeps its outlines in.
constexpr std::array<std::string_view, 2> kOutlineExtensions = {"bike", "opml"};

std::string extensionOf(const fs::path& url) {
  return text::lowercased(LKAttachmentTypes::pathExtension(url.native()));
}

// A name for a person: what is no UTF-8 in it is spelled out.
std::string shownName(const fs::path& url) {
  return text::escapedInvalid(url.filename().string());
}

std::string refusalOf(const std::string& extension) {
  const std::string kind = extension.empty() ? "Such" : "." + text::escapedInvalid(extension);
  return kind + " files cannot be added to a collection.";
}

// --- Texts ---------------------------------------------------------------------------------------

// The reasons that differ between a plain file and a bundle's text.
struct TextReasons {
  const char* unreadable;
  const char* undecodable;
};
constexpr TextReasons kFileReasons = {"Could not read file", "Could not decode file"};
constexpr TextReasons kBundleReasons = {"Could not read text file",
                                        "Could not decode text file (not UTF-8 or macOS Roman)"};

// Throws ImportRefusal.
std::string readText(const fs::path& url, const TextReasons& reasons) {
  std::string bytes;
  try {
    bytes = readFileItself(url, maxTextBytes);
  } catch (const FileError& error) {
    throw ImportRefusal(error.code() == EFBIG ? "File too large (max 5 MB)" : reasons.unreadable);
  }
  std::optional<std::string> text = decoded(bytes);
  if (!text) throw ImportRefusal(reasons.undecodable);
  return std::move(*text);
}

std::optional<Instant> modificationDate(const fs::path& url) {
  try {
    const auto info = fileInfo(url);
    return info ? std::optional(info->modified) : std::nullopt;
  } catch (const FileError&) {
    return std::nullopt;
  }
}

// The note of a text, still to be written.
ImportedNote noteOf(StrippedDocument&& document, const fs::path& item, const fs::path& textFile) {
  ImportedNote note;
  note.noteTitle = document.title.value_or(text::escapedInvalid(item.stem().string()));
  note.baseName = note.noteTitle;
  note.body = std::move(document.body);
  note.createdDate = creationDate(textFile);
  note.modifiedDate = modificationDate(textFile);
  return note;
}

ItemResult failed(const fs::path& url, const std::string& reason) {
  return {.success = false, .problems = {{shownName(url), reason}}};
}

// Runs the import of one item, and makes its result of what it throws.
template <typename Work>
ItemResult guarded(const fs::path& url, Work work) {
  try {
    return work();
  } catch (const FileError& error) {  // what cannot be read is an ImportRefusal
    ItemResult result = failed(url, error.description());
    result.unwritten = {1, error.description()};
    return result;
  } catch (const Error& error) {
    return failed(url, error.description());
  }
}

// --- Bundles -------------------------------------------------------------------------------------

constexpr std::string_view kAssets = "assets";
constexpr uint64_t kMegabyte = uint64_t{1024} * 1024;
constexpr uint64_t kMaxAssetMegabytes = 20;

fs::path textOfBundle(const fs::path& bundle) {
  std::error_code error;
  if (fs::is_symlink(fs::symlink_status(bundle, error))) {
    throw ImportRefusal(kBundleReasons.unreadable);
  }
  try {
    for (const char* name : {"text.markdown", "text.md", "text.txt", "text.text"}) {
      if (nameIsTaken(bundle / name)) return bundle / name;
    }
  } catch (const FileError&) {
    throw ImportRefusal(kBundleReasons.unreadable);
  }
  throw ImportRefusal(
      "No text file found (expected text.markdown, text.md, text.txt, or "
      "text.text)");
}

// Where a link that has begun before the text ends: a name may hold pairs of parentheses.
size_t closingParenthesis(std::string_view text) {
  size_t open = 0;
  for (size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '(') ++open;
    if (text[at] == ')' && open-- == 0) return at;
  }
  return std::string_view::npos;
}

// The assets of one bundle on their way into the collection.
class BundleAssets {
 public:
  BundleAssets(const fs::path& bundle, ImportContext& batch) : bundle_(bundle), batch_(batch) {}

  void copyAll() {
    std::error_code error;
    const fs::path folder = bundle_ / kAssets;
    if (!fs::is_directory(fs::symlink_status(folder, error))) return;
    std::vector<std::string> assets;
    WalkOptions options;
    options.onProblem = [&](const WalkProblem& problem) {
      addProblem("Failed to copy asset " + text::escapedInvalid(problem.relativePath.empty()
                                                                    ? kAssets
                                                                    : problem.relativePath));
    };
    walkFolder(
        folder,
        [&](const WalkEntry& entry) {
          assets.emplace_back(entry.relativePath);
          return WalkStep::proceed;
        },
        options);
    if (assets.empty()) return;
    FreeNames* const names = attachmentNames(batch_);
    if (names == nullptr) {
      addProblem("Could not access .attachments directory — images skipped");
      return;
    }
    std::ranges::sort(assets);
    for (const std::string& asset : assets) copy(asset, *names);
  }

  // The body with its links to assets pointed at the copies.
  std::string linked(std::string_view body) const;

  std::vector<ImportProblem> takeProblems() { return std::move(problems_); }

 private:
  void addProblem(std::string reason) {
    problems_.push_back({shownName(bundle_), std::move(reason)});
  }

  void copy(const std::string& asset, FreeNames& names) {
    const fs::path file = bundle_ / kAssets / asset;
    if (!isAllowedAttachment(file)) {
      addProblem(shownName(bundle_) + " — " + refusalOf(extensionOf(file)));
      return;
    }
    try {
      const auto info = fileInfo(file);
      if (info && info->size > kMaxAssetMegabytes * kMegabyte) {
        const uint64_t megabytes = (info->size + kMegabyte - 1) / kMegabyte;
        addProblem(asset + " (too large: " + std::to_string(megabytes) + " MB, max 20 MB)");
        return;
      }
      stored_[text::composed(asset)] = copyAttachment(file, names);
    } catch (const FileError& error) {
      log::debug("an asset is not copied: " + error.description());
      addProblem("Failed to copy asset " + asset);
    }
  }

  // What stands in a link, or null when it names no copy.
  const std::string* storedFor(std::string_view reference) const {
    auto found = stored_.find(text::composed(percentDecoded(reference)));
    if (found == stored_.end()) found = stored_.find(text::composed(reference));
    return found == stored_.end() ? nullptr : &found->second;
  }

  const fs::path& bundle_;
  ImportContext& batch_;
  std::map<std::string, std::string> stored_;  // by the composed path below "assets"
  std::vector<ImportProblem> problems_;
};

std::string BundleAssets::linked(std::string_view body) const {
  if (stored_.empty()) return std::string(body);
  static constexpr std::string_view kLink = "](assets/";
  // Longer than any asset's name with every byte escaped, or decomposed besides: not worth decoding.
  size_t longest = 0;
  for (const auto& [asset, name] : stored_) longest = std::max(longest, 9 * asset.size());
  std::string result;
  size_t copied = 0;
  for (size_t at = body.find(kLink); at != std::string_view::npos; at = body.find(kLink, at + 1)) {
    if (at < copied) continue;  // inside the link before
    const size_t start = at + kLink.size();
    const std::string_view inside = body.substr(start, longest + 1);
    const size_t title = inside.find(" \"");  // one may follow
    const std::string_view untitled = inside.substr(0, title);
    std::string_view reference;
    const std::string* name = nullptr;
    for (const size_t end : {closingParenthesis(untitled), untitled.find(')')}) {
      if (name != nullptr || std::min(end, title) == std::string_view::npos) continue;
      reference = untitled.substr(0, end);
      name = storedFor(reference);
    }
    if (name == nullptr) continue;
    result.append(body.substr(copied, at + 2 - copied)).append(attachmentReference(*name));
    copied = start + reference.size();
  }
  return result.append(body.substr(copied));
}

ItemResult importItem(const fs::path& url, ImportContext& batch, const ImportOptions& options) {
  const std::string extension = extensionOf(url);
  if (extension == kBundleExtension) return importTextBundle(url, batch, options);
  if (std::ranges::count(kTextExtensions, extension) > 0) {
    return importPlainTextFile(url, batch, options);
  }
  std::string reason = refusalOf(extension);
  if (std::ranges::count(kOutlineExtensions, extension) > 0) {
    reason += " Open the original in Bike to view it.";
  }
  return failed(url, reason);
}

void addFilesUnder(const fs::path& folder, std::vector<fs::path>& files) {
  std::vector<std::string> paths;
  walkFolder(folder, [&](const WalkEntry& entry) {
    paths.emplace_back(entry.relativePath);
    return WalkStep::proceed;
  });
  std::ranges::sort(paths);
  for (const std::string& path : paths) files.push_back(folder / path);
}

bool isFolder(const fs::path& url) {
  std::error_code error;
  return fs::is_directory(url, error);
}

}  // namespace

std::vector<fs::path> expandDirectories(const std::vector<fs::path>& urls) {
  std::vector<fs::path> files;
  for (const fs::path& url : urls) {
    std::error_code error;
    const bool isLink = fs::is_symlink(fs::symlink_status(url, error));
    const fs::path item = isLink ? resolved(url) : url;
    if (isFolder(item) && extensionOf(item) != kBundleExtension) {
      addFilesUnder(item, files);
    } else {
      files.push_back(item);
    }
  }
  return files;
}

ItemResult importPlainTextFile(const fs::path& url, ImportContext& importContext,
                               const ImportOptions& options) {
  return guarded(url, [&] {
    const std::string text = readText(url, kFileReasons);
    requireUsableText(text);
    ImportedNote note = noteOf(stripForeignFrontMatter(text), url, url);
    if (options.collapseParagraphs) note.body = collapseMarkdownParagraphs(note.body);
    if (options.inlineTagPrefix) note.body = prefixInlineTags(note.body, *options.inlineTagPrefix);
    note.body = appendTagsToBody(note.body, options.appendTags);
    writeImportedNote(note, importContext);
    return ItemResult{.success = true, .problems = {}};
  });
}

ItemResult importTextBundle(const fs::path& url, ImportContext& importContext,
                            const ImportOptions& options) {
  return guarded(url, [&] {
    const fs::path textFile = textOfBundle(url);
    StrippedDocument document = stripForeignFrontMatter(readText(textFile, kBundleReasons));
    requireUsableText(document.body);
    ImportedNote note = noteOf(std::move(document), url, textFile);
    BundleAssets assets(url, importContext);
    assets.copyAll();
    note.body = assets.linked(note.body);
    if (options.inlineTagPrefix) note.body = prefixInlineTags(note.body, *options.inlineTagPrefix);
    note.body = appendTagLinesToBody(note.body, readTextBundleTags(url));
    note.body = appendTagsToBody(note.body, options.appendTags);
    writeImportedNote(note, importContext);
    return ItemResult{.success = true, .problems = assets.takeProblems()};
  });
}

std::vector<std::string> tagsOfBundleInfo(std::string_view json) {
  std::vector<std::string> tags;
  const Json info = parseJson(json);
  const auto list = info.is_object() ? info.find("tags") : info.end();
  if (list == info.end() || !list->is_array()) return tags;
  for (const Json& tag : *list) {
    if (!tag.is_string()) continue;
    std::string readable = readableTag(tag.get_ref<const std::string&>());
    if (!readable.empty()) tags.push_back(std::move(readable));
  }
  return tags;
}

std::vector<std::string> readTextBundleTags(const fs::path& bundleURL) {
  static constexpr uint64_t kMaxInfoBytes = uint64_t{1024} * 1024;
  try {
    return tagsOfBundleInfo(readFileItself(bundleURL / "info.json", kMaxInfoBytes));
  } catch (const Error& error) {
    log::debug("a bundle without readable information: " + error.description());
    return {};
  }
}

ImportBatchResult performImport(const std::vector<fs::path>& sourceURLs,
                                ImportContext& importContext, const ImportOptions& options,
                                const ImportProgress& progress) {
  const LKImportActivity::Scope running;
  ImportBatchResult result;
  const std::vector<fs::path> items = expandDirectories(sourceURLs);
  for (size_t i = 0; i < items.size(); ++i) {
    ItemResult item = importItem(items[i], importContext, options);
    ++(item.success ? result.importedCount : result.skippedCount);
    result.unwritten.add(item.unwritten);
    std::ranges::move(item.problems, std::back_inserter(result.errors));
    if (progress) progress(i + 1, items.size());
  }
  finishImport(importContext);
  return result;
}

}  // namespace lk::LKImportEngine
