#include "LKCore/Import/LKObsidianImporter.h"

#include <utility>

#include "LKCore/Base/Log.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Import/LKImportActivity.h"
#include "LKCore/Import/VaultReferences.h"
#include "LKCore/Platform/Files.h"

namespace lk::LKObsidianImporter {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kRootTag = "imported/obsidian";

// --- Rewriting -----------------------------------------------------------------------------------

// The name that a reference has in the collection: by what is written, or its last component.
const std::string* storedName(std::string_view reference, const ImageMapping& mapping) {
  const auto whole = mapping.find(reference);
  if (whole != mapping.end()) return &whole->second;
  const auto last = mapping.find(reference.substr(reference.rfind('/') + 1));
  return last == mapping.end() ? nullptr : &last->second;
}

// Copies a line while parts of it are replaced, left to right.
class LineCopy {
 public:
  LineCopy(std::string_view line, std::string& result) : line_(line), result_(result) {}

  void replace(size_t start, size_t end, std::string_view with) {
    result_.append(line_.substr(copied_, start - copied_)).append(with);
    copied_ = end;
  }
  void finish() { result_.append(line_.substr(copied_)); }

 private:
  std::string_view line_;
  std::string& result_;
  size_t copied_ = 0;
};

// --- Notes ---------------------------------------------------------------------------------------

// What was copied, by its source.
using CopiedAttachments = std::map<fs::path, std::string>;

CopiedAttachments copyPlanned(const AttachmentPlan& plan, ImportContext& context,
                              std::vector<ImportProblem>& errors) {
  CopiedAttachments copied;
  if (plan.sources.empty()) return copied;
  FreeNames* const names = LKImportEngine::attachmentNames(context);
  if (names == nullptr) {
    errors.push_back({".attachments", "Could not access .attachments directory — images skipped"});
    return copied;
  }
  for (const fs::path& source : plan.sources) {
    try {
      copied.emplace(source, LKImportEngine::copyAttachment(source, *names));
    } catch (const FileError& error) {
      const std::string name = source.filename().string();
      log::debug("an attachment is not copied: " + error.description());
      errors.push_back({name, "Failed to copy asset " + name});
    }
  }
  return copied;
}

// The names for what one note shows. What stands behind the file's name, a page say, stays.
ImageMapping mappingOf(const std::vector<AttachmentRef>& references,
                       const CopiedAttachments& copied) {
  ImageMapping mapping;
  for (const AttachmentRef& reference : references) {
    const auto copy = copied.find(reference.source);
    if (copy == copied.end()) continue;
    const std::string decoded = LKImportEngine::percentDecoded(reference.key);
    const bool namesFile = text::equalIgnoringCase(
        text::trimmed(fs::path(decoded).filename().string()), reference.source.filename().string());
    const size_t fragment = namesFile ? std::string::npos : decoded.find('#');
    const std::string rest = fragment == std::string::npos ? "" : decoded.substr(fragment);
    mapping.emplace(reference.key, copy->second + rest);
  }
  return mapping;
}

std::string below(std::string_view tag) {
  return std::string(kRootTag) + "/" + std::string(tag);
}

std::string convertedBody(const ObsidianEntry& entry, const ImageMapping& mapping,
                          const ImportOptions& options) {
  std::string body = entry.body;
  if (!mapping.empty()) {
    // Embeds last: they become standard images, whose new names may be old names of other files.
    body = rewriteStandardImagePaths(body, mapping);
    body = convertImageEmbeds(body, mapping);
  }
  body = convertAliasedLinks(body);
  body = LKImportEngine::prefixInlineTags(body, below(""));
  if (options.collapseParagraphs) body = LKImportEngine::collapseMarkdownParagraphs(body);
  std::vector<std::string> tags;
  if (entry.frontMatter) {
    for (const std::string& tag : entry.frontMatter->tags) {
      const std::string readable = LKImportEngine::readableTag(tag);
      if (!readable.empty()) tags.push_back(below(readable));
    }
  }
  tags.push_back(entry.folderTag ? below(*entry.folderTag) : std::string(kRootTag));
  body = LKImportEngine::appendTagLinesToBody(body, tags);
  return LKImportEngine::appendTagsToBody(body, options.appendTags);
}

LKImportEngine::ImportedNote noteOf(const ObsidianEntry& entry, std::string body) {
  LKImportEngine::ImportedNote note;
  note.body = std::move(body);
  note.baseName = entry.url.stem().string();
  note.noteTitle = note.baseName;
  if (entry.frontMatter) {
    if (entry.frontMatter->title) note.noteTitle = *entry.frontMatter->title;
    if (entry.frontMatter->date) note.createdDate = parseDate(*entry.frontMatter->date);
  }
  if (!note.createdDate) note.createdDate = LKImportEngine::creationDate(entry.url);
  if (const auto info = fileInfo(entry.url)) note.modifiedDate = info->modified;
  return note;
}

}  // namespace

std::string convertImageEmbeds(std::string_view body, const ImageMapping& imageMapping) {
  return LKImportEngine::rewriteOutsideFences(
      body, [&](std::string_view line, std::string& result) {
        LineCopy copy(line, result);
        forEachWikiEmbed(line, [&](const Reference& reference) {
          const std::string* const name = storedName(reference.target.of(line), imageMapping);
          if (name == nullptr) return;
          copy.replace(reference.whole.start, reference.whole.end,
                       "![](" + LKImportEngine::attachmentReference(*name) + ")");
        });
        copy.finish();
      });
}

std::string rewriteStandardImagePaths(std::string_view body, const ImageMapping& imageMapping) {
  return LKImportEngine::rewriteOutsideFences(
      body, [&](std::string_view line, std::string& result) {
        LineCopy copy(line, result);
        forEachStandardImage(line, [&](const Reference& reference) {
          const std::string_view target = reference.target.of(line);
          const std::string* name = storedName(target, imageMapping);
          if (name == nullptr) {
            name = storedName(LKImportEngine::percentDecoded(target), imageMapping);
          }
          if (name == nullptr) return;
          copy.replace(reference.target.start, reference.target.end,
                       LKImportEngine::attachmentReference(*name));
        });
        copy.finish();
      });
}

std::string convertAliasedLinks(std::string_view body) {
  return LKImportEngine::rewriteOutsideFences(body, [](std::string_view line, std::string& result) {
    LineCopy copy(line, result);
    forEachAliasedLink(line, [&](const Reference& reference) {
      copy.replace(reference.target.end, reference.whole.end, "]]");
    });
    copy.finish();
  });
}

ImportBatchResult performImport(const std::vector<ObsidianEntry>& entries,
                                const std::vector<fs::path>& imageURLs, const fs::path& rootURL,
                                const ImportOptions& options, ImportContext& importContext,
                                const ImportProgress& progress) {
  const LKImportActivity::Scope running;
  ImportBatchResult result;
  const AttachmentPlan plan = planAttachments(entries, rootURL, imageURLs);
  const CopiedAttachments copied = copyPlanned(plan, importContext, result.errors);
  for (size_t i = 0; i < entries.size(); ++i) {
    const ObsidianEntry& entry = entries[i];
    try {
      const auto references = plan.perNote.find(entry.url);
      const ImageMapping mapping =
          references == plan.perNote.end() ? ImageMapping{} : mappingOf(references->second, copied);
      LKImportEngine::writeImportedNote(noteOf(entry, convertedBody(entry, mapping, options)),
                                        importContext);
      ++result.importedCount;
    } catch (const FileError& error) {
      ++result.skippedCount;
      result.unwritten.add({1, error.description()});
      result.errors.push_back({entry.url.filename().string(), error.description()});
    } catch (const Error& error) {
      ++result.skippedCount;
      result.errors.push_back({entry.url.filename().string(), error.description()});
    }
    if (progress) progress(i + 1, entries.size());
  }
  LKImportEngine::finishImport(importContext);
  return result;
}

}  // namespace lk::LKObsidianImporter
