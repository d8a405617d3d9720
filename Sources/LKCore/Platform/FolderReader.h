#pragma once

// Reads many files of one folder, one after the other, into one buffer: for searches that look at
// every file and keep few.
//
//     FolderReader reader(collection);
//     if (const auto bytes = reader.read("Projects/Plan.md")) ...

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace lk {

class FolderReader {
 public:
  // Throws FileError when the folder cannot be opened.
  explicit FolderReader(const std::filesystem::path& folder);
  ~FolderReader();
  FolderReader(const FolderReader&) = delete;
  FolderReader& operator=(const FolderReader&) = delete;

  // The file's bytes, valid until the next call; nothing when it cannot be read or is no regular
  // file. A symbolic link is followed; an absolute path is read where it is. Never blocks.
  std::optional<std::string_view> read(const std::string& path);

 private:
  int folder_ = -1;
  std::string buffer_;
};

}  // namespace lk
