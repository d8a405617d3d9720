#include "LarkspireCLI/Commands/AttachmentsCommands.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "LKCore/Base/Json.h"
#include "LarkspireCLI/Support/AttachmentScanner.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/NoteWriting.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/TextColumns.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

constexpr const char* kNoOrphans = "No orphaned images.";

struct AttachmentScan {
  std::vector<AttachmentInfo> attachments;
  std::vector<std::string> unread;  // notes and folders
};

AttachmentScan scanAttachments(const fs::path& collection) {
  AttachmentScan result;
  result.attachments = AttachmentScanner::scan(
      collection, [&](const std::string& path) { result.unread.push_back(path); });
  return result;
}

AttachmentScan scanOrphans(const fs::path& collection) {
  AttachmentScan result = scanAttachments(collection);
  std::erase_if(result.attachments, [](const AttachmentInfo& each) { return each.refCount > 0; });
  return result;
}

std::string unreadWords(const std::vector<std::string>& unread) {
  const std::string others =
      unread.size() == 1 ? "" : " and " + std::to_string(unread.size() - 1) + " more";
  return "Could not read " + unread.front() + others + ", which may use attachments.";
}

void warnOfUnread(const GlobalOptions& options, const AttachmentScan& scan) {
  if (!scan.unread.empty()) printNote(options, "Warning: " + unreadWords(scan.unread));
}

void printAttachments(const GlobalOptions& options, const std::vector<AttachmentInfo>& attachments,
                      const std::string& noneMessage) {
  if (options.json) {
    Json rows = Json::array();
    for (const AttachmentInfo& each : attachments) {
      rows.push_back({{"name", each.name}, {"bytes", each.size}, {"references", each.refCount}});
    }
    printLine(printJson(rows));
    return;
  }
  if (attachments.empty()) {
    printLine(noneMessage);
    return;
  }
  TextColumns rows;
  for (const AttachmentInfo& each : attachments) {
    rows.add(
        {{each.name, TextStyle::bold},
         {AttachmentScanner::formatBytes(each.size)},
         {std::to_string(each.refCount) + (each.refCount == 1 ? " reference" : " references")}});
  }
  printLine(rows.text(Terminal::ofStandardOutput()));
}

std::string countOfOrphans(size_t count) {
  return std::to_string(count) + " orphaned image(s)";
}

// What no note is known to use may be used by one that could not be read.
void requireAllRead(const AttachmentScan& scan) {
  if (!scan.unread.empty()) {
    throw CLIError::general(unreadWords(scan.unread) + " Nothing was deleted.");
  }
}

void requireOwnFolder(const fs::path& collection) {
  const fs::path folder = collection / ".attachments";
  std::error_code ignored;
  if (fs::is_symlink(folder, ignored)) {
    throw CLIError::general(folder.string() +
                            " is a symbolic link to another folder. Nothing was deleted.");
  }
}

void deleteOrphans(const GlobalOptions& options, const fs::path& collection,
                   const AttachmentScan& orphans) {
  requireWritable(collection);
  requireAllRead(orphans);
  requireOwnFolder(collection);
  const auto failures = AttachmentScanner::remove(collection, orphans.attachments);
  const std::string report =
      "Deleted " + countOfOrphans(orphans.attachments.size() - failures.size());
  if (failures.empty()) {
    printMessage(options, report);
    return;
  }
  std::string list;
  for (const std::string& failure : failures) list += "\n  " + failure;
  throw CLIError::writeFailed(report + ". These are still there:" + list);
}

}  // namespace

void AttachmentsListCommand::declare(ArgumentList& /*arguments*/) {}

void AttachmentsListCommand::run() {
  const AttachmentScan scan =
      scanAttachments(resolvedCollection(options.collection, options.quiet));
  warnOfUnread(options, scan);
  printAttachments(options, scan.attachments, "No attachments.");
}

void AttachmentsOrphansCommand::declare(ArgumentList& /*arguments*/) {}

void AttachmentsOrphansCommand::run() {
  const AttachmentScan orphans = scanOrphans(resolvedCollection(options.collection, options.quiet));
  warnOfUnread(options, orphans);
  printAttachments(options, orphans.attachments, kNoOrphans);
}

void AttachmentsPruneCommand::declare(ArgumentList& arguments) {
  arguments.flag("--force", force,
                 "Actually delete. Without this, only reports what would be deleted.");
}

void AttachmentsPruneCommand::run() {
  const fs::path collection = resolvedCollection(options.collection, options.quiet);
  const AttachmentScan orphans = scanOrphans(collection);
  if (orphans.attachments.empty()) {
    printMessage(options, kNoOrphans);
    return;
  }
  if (force) {
    deleteOrphans(options, collection, orphans);
    return;
  }
  warnOfUnread(options, orphans);
  uint64_t bytes = 0;
  for (const AttachmentInfo& each : orphans.attachments) bytes += each.size;
  printMessage(options, "Would delete " + countOfOrphans(orphans.attachments.size()) + " (" +
                            AttachmentScanner::formatBytes(bytes) + "). Re-run with --force.");
}

}  // namespace lk
