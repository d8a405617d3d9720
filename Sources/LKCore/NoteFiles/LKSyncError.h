#pragma once

#include <exception>
#include <filesystem>
#include <string>
#include <string_view>

#include "LKCore/Base/Error.h"

namespace lk {

// A note file that could not be read, written or understood. Made by the function named after its
// case:
//
//     throw LKSyncError::readFailed(url, error);
//     // "Failed to read Plan.md: Permission denied"
class LKSyncError : public Error {
 public:
  enum class Case {
    fileCoordinationFailed,
    readFailed,
    writeFailed,
    invalidFrontMatter,
    iCloudUnavailable,
    containerNotFound,
  };

  static LKSyncError fileCoordinationFailed(const std::exception& error);
  static LKSyncError readFailed(const std::filesystem::path& url, const std::exception& error);
  static LKSyncError writeFailed(const std::filesystem::path& url, const std::exception& error);
  static LKSyncError invalidFrontMatter(const std::filesystem::path& url);
  static LKSyncError iCloudUnavailable();
  static LKSyncError containerNotFound();

  Case errorCase() const noexcept { return case_; }
  // The file; empty for the cases without one.
  const std::filesystem::path& url() const noexcept { return url_; }
  // The errno of the failed system call, 0 when there was none.
  int code() const noexcept { return code_; }

  // What a person may try.
  std::string_view recoverySuggestion() const noexcept;

 private:
  LKSyncError(Case errorCase, std::string description, std::filesystem::path url = {},
              int code = 0);

  Case case_;
  std::filesystem::path url_;
  int code_;
};

}  // namespace lk
