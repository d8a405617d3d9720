#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "LKCore/Base/Time.h"
#include "LKCore/Platform/Files.h"

namespace lk {

// Reads many files below one folder, one after the other, into the same memory: four system calls
// and no allocation each. Made for listings that open every file of a collection.
//
//     FolderReader reader(collection);
//     if (const auto file = reader.read("Projects/Plan.md")) index(file->bytes);
class FolderReader {
 public:
  struct File {
    std::string_view bytes;  // good until the next read
    Instant modified;
  };

  // A folder that cannot be opened has no files.
  explicit FolderReader(const std::filesystem::path& folder);
  ~FolderReader();
  FolderReader(const FolderReader&) = delete;
  FolderReader& operator=(const FolderReader&) = delete;

  // The file, or its first `limit` bytes. Nothing for what is no regular file or symbolic link to
  // one, and for what cannot be read or held. Never waits for a FIFO or a device.
  std::optional<File> read(const std::string& relativePath, size_t limit = SIZE_MAX);

 private:
  int folder_ = -1;
  std::string buffer_;  // grows only
};

}  // namespace lk
