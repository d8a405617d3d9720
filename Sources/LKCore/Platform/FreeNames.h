#pragma once

#include <filesystem>
#include <map>
#include <string>

namespace lk {

// Names that are free in one folder, for whoever makes many files there: "Plan.md", then
// "Plan 2.md", "Plan 3.md". No name is given twice, so that after a race one asks again, and the
// thousandth "Plan" costs no more than the first.
//
//     FreeNames names(collection);
//     while (!createFile(names.folder() / names.next("Plan", ".md"), bytes)) {}
class FreeNames {
 public:
  explicit FreeNames(std::filesystem::path folder);

  const std::filesystem::path& folder() const noexcept { return folder_; }

  // The extension comes with its full stop. Throws FileError when the folder cannot be asked.
  std::string next(const std::string& stem, const std::string& extension);

 private:
  std::filesystem::path folder_;
  std::map<std::string, int> lastNumbers_;  // by the name without a number
};

}  // namespace lk
