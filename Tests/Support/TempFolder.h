#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace lk::test {

// A fresh folder that is removed with all its content when the object goes.
class TempFolder {
 public:
  TempFolder() : TempFolder(std::filesystem::temp_directory_path()) {}
  explicit TempFolder(const std::filesystem::path& parent);
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path operator/(std::string_view name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

// Where a folder costs no disk writes: a file system in memory, if there is one.
std::filesystem::path memoryFolder();

// Whole files, byte for byte. Reading a file that is not there throws std::runtime_error.
std::string readWhole(const std::filesystem::path& file);
void writeWhole(const std::filesystem::path& file, std::string_view bytes);

}  // namespace lk::test
