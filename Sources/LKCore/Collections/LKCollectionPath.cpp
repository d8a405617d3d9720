#include "LKCore/Collections/LKCollectionPath.h"

#include <mutex>

#include "LKCore/Platform/Directories.h"

namespace lk::LKCollectionPath {

namespace fs = std::filesystem;

namespace {

std::mutex mutex;
std::optional<fs::path> overrideFolder;

}  // namespace

void setOverrideDocumentsDirectory(std::optional<fs::path> folder) {
  const std::lock_guard guard(mutex);
  overrideFolder = std::move(folder);
}

std::optional<fs::path> overrideDocumentsDirectory() {
  const std::lock_guard guard(mutex);
  return overrideFolder;
}

fs::path activeDocumentsDirectory() {
  if (const auto folder = overrideDocumentsDirectory()) return *folder;
  return directories::ubiquityDocuments().value_or(directories::documents());
}

fs::path activeAttachmentsDirectory() {
  return activeDocumentsDirectory() / ".attachments";
}

}  // namespace lk::LKCollectionPath
