#include <algorithm>
#include <filesystem>
#include <string>

#include "LKCore/Base/Json.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Platform/Opener.h"
#include "LarkspireCLI/Commands/CollectionCommands.h"
#include "LarkspireCLI/Support/AttachmentScanner.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CacheReader.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/CollectionRows.h"
#include "LarkspireCLI/Support/DocumentationPage.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/OutputFormatter.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

// Of the notes outside the trash, but for `trash`.
struct NoteCounts {
  int64_t notes = 0;
  int64_t dailyNotes = 0;
  int64_t archivedNotes = 0;
  int64_t trash = 0;
};

struct AttachmentCounts {
  int64_t files = 0;
  int64_t referenced = 0;
  uint64_t bytes = 0;
};

NoteCounts countsOf(const std::vector<LKNote*>& notes) {
  NoteCounts counts;
  for (const LKNote* note : notes) {
    if (note->isTrashed) {
      ++counts.trash;
      continue;
    }
    ++counts.notes;
    if (note->dailyDate) ++counts.dailyNotes;
    if (note->isArchived()) ++counts.archivedNotes;
  }
  return counts;
}

AttachmentCounts countsOf(const std::vector<AttachmentInfo>& attachments) {
  AttachmentCounts counts;
  for (const AttachmentInfo& each : attachments) {
    ++counts.files;
    if (each.refCount > 0) ++counts.referenced;
    counts.bytes += each.size;
  }
  return counts;
}

// Whether the application or the tool keeps a store of the folder's collection.
bool hasStore(const fs::path& collection) {
  const fs::path folder = resolved(collection);
  return std::ranges::any_of(collectionRows(), [&](const CollectionRow& row) {
    return row.cacheAvailable && resolved(row.path) == folder;
  });
}

struct SourceCode {
  const char* operator()(const CacheReader::None& /*none*/) const { return "none"; }
  const char* operator()(const CacheReader::AppIndex& /*app*/) const { return "app"; }
  const char* operator()(const CacheReader::Files& files) const {
    return files.access == AppIndexAccess::Access::denied ? "files-access-denied" : "files";
  }
};

struct SourceWords {
  std::string operator()(const CacheReader::None& /*none*/) const { return "None"; }
  std::string operator()(const CacheReader::AppIndex& /*app*/) const { return "Larkspire's own"; }
  std::string operator()(const CacheReader::Files& files) const {
    if (files.access != AppIndexAccess::Access::denied) {
      return "Built from files — Larkspire hasn't indexed this collection yet";
    }
    return "Built from files — macOS doesn't allow this app to open Larkspire' index (" +
           documentationPage(kPermissionsPage) + ")";
  }
};

}  // namespace

void CollectionInfoCommand::declare(ArgumentList& arguments) {
  arguments.flag("--finder", finder, "Open collection in Finder.");
}

void CollectionInfoCommand::run() {
  const fs::path collection = resolvedCollectionAsItStands(options.collection, options.quiet);
  CacheReader cache(LKParts::tags);
  const NoteCounts notes = countsOf(cache.fetchNotes());
  const auto tags = static_cast<int64_t>(OutputFormatter::tagRows(cache.fetchTags()).size());
  const AttachmentCounts attachments = countsOf(AttachmentScanner::scan(collection));
  const int64_t orphaned = attachments.files - attachments.referenced;
  const std::string mode(modeText(collectionMode(collection)));
  if (options.json) {
    printLine(printJson({{"collection", collection.string()},
                         {"mode", mode},
                         {"notes", notes.notes},
                         {"trash", notes.trash},
                         {"dailyNotes", notes.dailyNotes},
                         {"archivedNotes", notes.archivedNotes},
                         {"tags", tags},
                         {"attachments", attachments.files},
                         {"attachmentsReferenced", attachments.referenced},
                         {"attachmentsOrphaned", orphaned},
                         {"attachmentBytes", attachments.bytes},
                         {"cacheAvailable", hasStore(collection)},
                         {"indexSource", std::visit(SourceCode{}, cache.source())}}));
  } else {
    printLine("Collection: " + collection.string());
    printLine("Mode:   " + mode);
    printLine("Notes: " + std::to_string(notes.notes) + " (" + std::to_string(notes.trash) +
              " trashed)");
    printLine("Daily notes: " + std::to_string(notes.dailyNotes));
    printLine("Archived: " + std::to_string(notes.archivedNotes));
    printLine("Tags: " + std::to_string(tags));
    printLine("Images: " + std::to_string(attachments.files) + " files, " +
              std::to_string(attachments.referenced) + " referenced, " + std::to_string(orphaned) +
              " orphaned, " + AttachmentScanner::formatBytes(attachments.bytes));
    printLine(std::string("Cache: ") + (hasStore(collection) ? "Available" : "Not available"));
    printLine("Index: " + std::visit(SourceWords{}, cache.source()));
  }
  if (!finder) return;
  try {
    openURL(fileURL(collection, true));
  } catch (const Error& error) {
    throw CLIError::general(error.description());
  }
}

}  // namespace lk
