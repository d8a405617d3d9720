#include "LarkspireCLI/Support/CLIError.h"

namespace lk {

CLIError CLIError::noteNotFound(const std::string& title) {
  return {Case::noteNotFound,
          "Note \"" + title +
              "\" not found.\n  Hint: Use `lk list` to see all notes, or `lk search` to search."};
}

CLIError CLIError::writeFailed(const std::string& detail) {
  return {Case::writeFailed, "File write failed — " + detail};
}

CLIError CLIError::invalidFrontMatter(const std::string& fileName) {
  return {Case::invalidFrontMatter,
          "Invalid front matter in " + fileName + ". File may be corrupted."};
}

CLIError CLIError::duplicateTitle(const std::string& title) {
  return {Case::duplicateTitle, "A note named \"" + title + "\" already exists."};
}

CLIError CLIError::propertyValidation(const std::string& message) {
  return {Case::propertyValidation, message};
}

CLIError CLIError::general(const std::string& message) {
  return {Case::general, message};
}

CLIError CLIError::collectionNotFound() {
  return {Case::collectionNotFound,
          "Collection not found. Is iCloud Drive enabled?\n  Hint: You can specify a collection "
          "path with --collection /path/to/collection"};
}

CLIError CLIError::withHint(const std::string& hint) const {
  CLIError result = *this;
  result.hint_ = hint;
  return result;
}

const char* CLIError::code() const noexcept {
  switch (case_) {
    case Case::noteNotFound:
      return "note_not_found";
    case Case::writeFailed:
      return "write_failed";
    case Case::invalidFrontMatter:
      return "invalid_front_matter";
    case Case::duplicateTitle:
      return "duplicate_title";
    case Case::propertyValidation:
      return "property_validation";
    case Case::general:
      return "error";
    case Case::collectionNotFound:
      return "collection_not_found";
  }
  return "error";
}

int CLIError::exitStatus() const noexcept {
  switch (case_) {
    case Case::general:
      return 1;
    case Case::noteNotFound:
      return 2;
    case Case::collectionNotFound:
      return 3;
    case Case::writeFailed:
      return 4;
    case Case::invalidFrontMatter:
      return 5;
    case Case::duplicateTitle:
      return 6;
    case Case::propertyValidation:
      return 7;
  }
  return 1;
}

}  // namespace lk
