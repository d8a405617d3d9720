#include "LKCore/NoteFiles/LKSyncError.h"

#include <utility>

#include "LKCore/Base/Text.h"
#include "LKCore/Platform/Files.h"

namespace lk {

namespace {

std::string nameOf(const std::filesystem::path& url) {
  return text::escapedInvalid(url.filename().string());
}

// A file error's cause without its path: the message names the file already.
std::string detailOf(const std::exception& error) {
  const auto* const failed = dynamic_cast<const FileError*>(&error);
  return failed != nullptr ? failed->cause() : error.what();
}

}  // namespace

LKSyncError::LKSyncError(Case errorCase, std::string description, std::filesystem::path url,
                         int code)
    : Error(std::move(description)), case_(errorCase), url_(std::move(url)), code_(code) {}

LKSyncError LKSyncError::fileCoordinationFailed(const std::exception& error) {
  return {Case::fileCoordinationFailed,
          "File coordination failed: " + detailOf(error),
          {},
          errnoOf(error)};
}

LKSyncError LKSyncError::readFailed(const std::filesystem::path& url, const std::exception& error) {
  return {Case::readFailed, "Failed to read " + nameOf(url) + ": " + detailOf(error), url,
          errnoOf(error)};
}

LKSyncError LKSyncError::writeFailed(const std::filesystem::path& url,
                                     const std::exception& error) {
  return {Case::writeFailed, "Failed to write " + nameOf(url) + ": " + detailOf(error), url,
          errnoOf(error)};
}

LKSyncError LKSyncError::invalidFrontMatter(const std::filesystem::path& url) {
  return {Case::invalidFrontMatter,
          "Invalid front matter in " + nameOf(url) + ". File may be corrupted.", url};
}

LKSyncError LKSyncError::iCloudUnavailable() {
  return {Case::iCloudUnavailable, "iCloud is not available. Please sign in with your Apple ID."};
}

LKSyncError LKSyncError::containerNotFound() {
  return {Case::containerNotFound, "The Larkspire iCloud container could not be found."};
}

std::string_view LKSyncError::recoverySuggestion() const noexcept {
  switch (case_) {
    case Case::fileCoordinationFailed:
      return "Try again in a moment. This is usually a temporary issue.";
    case Case::readFailed:
    case Case::containerNotFound:
      return "Try signing out and back into iCloud Drive.";
    case Case::writeFailed:
      return "Check that iCloud Drive is enabled and you have enough storage.";
    case Case::invalidFrontMatter:
      return "This file may be corrupted. Try deleting it and recreating the note.";
    case Case::iCloudUnavailable:
      return "Enable iCloud Drive in Settings and sign in with your Apple ID.";
  }
  return {};
}

}  // namespace lk
