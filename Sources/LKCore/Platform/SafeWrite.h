#pragma once

// The writing half of Files.h with what it counts on made plain, so that tests can take it away;
// nothing above this folder includes it.

#include <filesystem>
#include <string_view>

#include "LKCore/Platform/Files.h"

namespace lk {

// What a file system can do. Each is tried and found missing by itself; false says not to try.
struct FileSystemAbilities {
  bool anonymousFiles = true;   // O_TMPFILE, named by linkat
  bool locks = true;            // flock
  bool exclusiveRename = true;  // RENAME_NOREPLACE
  bool hardLinks = true;
};

void replaceFile(const std::filesystem::path& path, std::string_view bytes,
                 FileSystemAbilities abilities);
[[nodiscard]] bool createFile(const std::filesystem::path& path, std::string_view bytes,
                              FileSystemAbilities abilities,
                              Durability durability = Durability::now);
[[nodiscard]] bool copyToNewFile(const std::filesystem::path& from, const std::filesystem::path& to,
                                 FileSystemAbilities abilities,
                                 Durability durability = Durability::now);
[[nodiscard]] bool moveFile(const std::filesystem::path& from, const std::filesystem::path& to,
                            FileSystemAbilities abilities);

}  // namespace lk
