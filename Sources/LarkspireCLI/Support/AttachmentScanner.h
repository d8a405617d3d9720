#pragma once

// The files in a collection's `.attachments` folder and how many notes use each.

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace lk {

struct AttachmentInfo {
  std::string name;  // below `.attachments`
  uint64_t size = 0;
  int64_t refCount = 0;  // notes, daily ones too, whose text holds the name

  bool operator==(const AttachmentInfo&) const = default;
};

namespace AttachmentScanner {

// Sorted by name; temporary files of other programs left out. Never throws for what it cannot read.
std::vector<AttachmentInfo> scan(const std::filesystem::path& collection);

// "1 byte", "999 bytes", "1.2 KB", "3.4 MB", in steps of a thousand.
std::string formatBytes(uint64_t count);

}  // namespace AttachmentScanner

}  // namespace lk
