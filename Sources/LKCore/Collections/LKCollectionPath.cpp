#include "LKCore/Collections/LKCollectionPath.h"

#include <mutex>
#include <utility>

#include "LKCore/Collections/LKCollectionStore.h"
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
  if (const auto record = LKCollectionStore::shared().activeCollection()) return record->path;
  return directories::ubiquityDocuments().value_or(directories::documents());
}

fs::path activeAttachmentsDirectory() {
  return activeDocumentsDirectory() / ".attachments";
}

fs::path defaultCollectionDocumentsDirectory() {
  const LKCollectionStore& store = LKCollectionStore::shared();
  for (const LKCollectionRecord& record : store.collections()) {
    if (record.isDefault) return record.path;
  }
  return store.plannedDefaultCollection().path;
}

}  // namespace lk::LKCollectionPath
