#pragma once

// The files in a collection's `.attachments` folder and how many notes use each
// (LKCore/Attachments/AttachmentUses.h). A note in the trash counts, since it may come back.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace lk {

struct AttachmentInfo {
  std::string name;  // below `.attachments`
  uint64_t size = 0;
  int64_t refCount = 0;  // notes that use it, daily and trashed ones too

  bool operator==(const AttachmentInfo&) const = default;
};

namespace AttachmentScanner {

// Sorted by name; temporary files of other programs left out. Never throws for what it cannot read.
std::vector<AttachmentInfo> scan(const std::filesystem::path& collection);

// The same, and told of each note and folder below the collection that could not be read, and may
// use any attachment: its relative path, with bytes that are no UTF-8 escaped.
std::vector<AttachmentInfo> scan(const std::filesystem::path& collection,
                                 const std::function<void(const std::string& path)>& onUnread);

// Removes the attachments and gives what could not be removed, as "PATH: CAUSE". One that is gone
// already is fine. Nothing outside `.attachments` is touched: a symbolic link in it goes and what
// it points to stays, and nothing behind one to a folder is removed.
std::vector<std::string> remove(const std::filesystem::path& collection,
                                const std::vector<AttachmentInfo>& attachments);

// "1 byte", "999 bytes", "1.2 KB", "3.4 MB", in steps of a thousand.
std::string formatBytes(uint64_t count);

}  // namespace AttachmentScanner

}  // namespace lk
