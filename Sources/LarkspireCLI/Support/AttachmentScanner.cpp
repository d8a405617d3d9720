#include "LarkspireCLI/Support/AttachmentScanner.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <optional>

#include "LKCore/Attachments/AttachmentUses.h"
#include "LKCore/Attachments/LKAttachmentTypes.h"
#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKNoteFilename.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Platform/FolderReader.h"
#include "LKCore/Platform/FolderWalk.h"

namespace lk::AttachmentScanner {

namespace fs = std::filesystem;

namespace {

constexpr const char* kFolder = ".attachments";

bool mayBeFile(const WalkEntry& entry) {
  return entry.kind == WalkEntry::Kind::file || entry.kind == WalkEntry::Kind::symbolicLink;
}

std::vector<AttachmentInfo> attachmentsIn(const fs::path& folder) {
  std::vector<AttachmentInfo> attachments;
  walkFolder(folder, [&](const WalkEntry& entry) {
    if (!mayBeFile(entry) || LKAttachmentTypes::isTemporaryFile(entry.name)) {
      return WalkStep::proceed;
    }
    try {
      const auto info = fileInfo(folder / entry.relativePath);
      if (info && info->isRegular) {
        attachments.push_back({std::string(entry.relativePath), info->size, 0});
      }
    } catch (const FileError&) {
      return WalkStep::proceed;  // cannot be looked at, so it counts as not there
    }
    return WalkStep::proceed;
  });
  std::ranges::sort(attachments, {}, &AttachmentInfo::name);
  return attachments;
}

// A name that leads nowhere holds nothing.
bool mayHoldNotes(const fs::path& path) {
  try {
    const auto info = fileInfo(path);
    return info && (info->isDirectory || LKNoteFilename::hasNoteExtension(path.native()));
  } catch (const FileError&) {
    return true;
  }
}

}  // namespace

std::vector<AttachmentInfo> scan(const fs::path& collection) {
  return scan(collection, [](const std::string&) {});
}

std::vector<AttachmentInfo> scan(const fs::path& collection,
                                 const std::function<void(const std::string& path)>& onUnread) {
  std::vector<AttachmentInfo> attachments = attachmentsIn(collection / kFolder);
  if (attachments.empty()) return attachments;
  std::vector<std::string> names;
  for (const AttachmentInfo& each : attachments) names.push_back(each.name);
  const AttachmentUses uses(names);
  FolderReader reader(collection);
  WalkOptions options;
  options.hiddenFolders = {".daily", ".trash"};
  options.onProblem = [&](const WalkProblem& problem) {
    if (!mayHoldNotes(collection / problem.relativePath)) return;
    onUnread(problem.relativePath.empty() ? "." : text::escapedInvalid(problem.relativePath));
  };
  const auto countIn = [&](const std::string& note) {
    if (const auto file = reader.read(note)) {
      for (const size_t used : uses.in(file->bytes)) ++attachments[used].refCount;
    } else if (mayHoldNotes(collection / note)) {
      onUnread(note);
    }
  };
  walkFolder(
      collection,
      [&](const WalkEntry& entry) {
        if (mayBeFile(entry) && LKNoteFilename::hasNoteExtension(entry.name)) {
          countIn(std::string(entry.relativePath));
        }
        return WalkStep::proceed;
      },
      options);
  return attachments;
}

std::vector<std::string> remove(const fs::path& collection,
                                const std::vector<AttachmentInfo>& attachments) {
  const fs::path folder = collection / kFolder;
  const fs::path inside = resolved(collection) / kFolder;
  std::vector<std::string> failures;
  for (const AttachmentInfo& each : attachments) {
    const fs::path file = folder / each.name;
    try {
      // A folder that became a link since the scan leads out.
      if (resolved(file.parent_path()) != (inside / each.name).parent_path()) {
        throw FileError(file, ELOOP);
      }
      removeFile(file);
    } catch (const FileError& error) {
      if (error.code() != ENOENT) failures.push_back(error.description());
    }
  }
  return failures;
}

std::string formatBytes(uint64_t count) {
  static constexpr std::array<const char*, 4> kUnits = {"KB", "MB", "GB", "TB"};
  if (count < 1000) return std::to_string(count) + (count == 1 ? " byte" : " bytes");
  double value = static_cast<double>(count) / 1000;
  size_t unit = 0;
  while (value >= 999.95 && unit + 1 < kUnits.size()) {
    value /= 1000;
    ++unit;
  }
  std::array<char, 48> text{};
  std::snprintf(text.data(), text.size(), "%.1f %s", value, kUnits[unit]);
  return text.data();
}

}  // namespace lk::AttachmentScanner
