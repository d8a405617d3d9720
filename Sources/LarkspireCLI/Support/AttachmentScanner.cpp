#include "LarkspireCLI/Support/AttachmentScanner.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <optional>

#include "LKCore/Attachments/LKAttachmentTypes.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Platform/FolderReader.h"
#include "LKCore/Platform/FolderWalk.h"

namespace lk::AttachmentScanner {

namespace fs = std::filesystem;

namespace {

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

void countReferences(std::string_view text, std::vector<AttachmentInfo>& attachments) {
  for (AttachmentInfo& each : attachments) {
    if (memmem(text.data(), text.size(), each.name.data(), each.name.size()) != nullptr) {
      ++each.refCount;
    }
  }
}

}  // namespace

std::vector<AttachmentInfo> scan(const fs::path& collection) {
  std::vector<AttachmentInfo> attachments = attachmentsIn(collection / ".attachments");
  if (attachments.empty()) return attachments;
  FolderReader reader(collection);
  WalkOptions options;
  options.hiddenFolders = {".daily"};
  walkFolder(
      collection,
      [&](const WalkEntry& entry) {
        if (mayBeFile(entry) && entry.name.ends_with(".md")) {
          const auto file = reader.read(std::string(entry.relativePath));
          if (file) countReferences(file->bytes, attachments);
        }
        return WalkStep::proceed;
      },
      options);
  return attachments;
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
