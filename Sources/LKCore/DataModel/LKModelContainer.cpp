#include "LKCore/DataModel/LKModelContainer.h"

#include <unistd.h>

#include <system_error>
#include <utility>

#include "LKCore/Base/Log.h"
#include "LKCore/Collections/LKCollectionStore.h"
#include "LKCore/DataModel/SQLiteStore.h"
#include "LKCore/Platform/Directories.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Platform/Volumes.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

constexpr uint64_t kLeastCapacity = 10'000'000;  // bytes

void deleteStore(const fs::path& path) {
  for (const char* suffix : {"", "-shm", "-wal"}) {
    const fs::path file = fs::path(path).concat(suffix);
    std::error_code error;
    fs::remove(file, error);
    if (error) log::warning(file.string() + " was not deleted: " + error.message());
  }
}

// A failure shows again, with more to say, when the store is opened.
void makeFolderOf(const fs::path& store) {
  try {
    createFolders(store.parent_path());
  } catch (const FileError& error) {
    log::error("The store's folder was not made: " + error.description());
  }
}

// The probe: a store that opens may still be damaged where its rows are.
bool canReadNotes(LKContext& context) {
  try {
    context.notes().fetch({.limit = 1});
    return true;
  } catch (const LKStoreError& error) {
    log::error("The store cannot be read: " + error.description());
    return false;
  }
}

// Why there is no store; makes the store's folder where that was missing.
std::string diagnosis(const fs::path& path) {
  const fs::path folder = path.parent_path();
  const std::optional<uint64_t> capacity = availableCapacity(folder);
  if (capacity && *capacity < kLeastCapacity) return "Store volume out of space.";
  std::error_code error;
  if (!fs::is_directory(folder, error)) {
    try {
      createFolders(folder);
    } catch (const FileError&) {
      return "Store directory could not be created.";
    }
    return "Store directory was missing.";
  }
  if (access(folder.c_str(), W_OK) != 0) return "Store directory not writable.";
  return "Store creation failed.";
}

}  // namespace

bool openOrRebuildStore(const fs::path& path) {
  std::string first;
  try {
    return !canReadNotes(*openStore(path));
  } catch (const LKStoreError& error) {
    first = error.description();
  }
  log::error("The store will not open and is made again: " + first);
  deleteStore(path);
  try {
    openStore(path);
  } catch (const LKStoreError& error) {
    throw LKStoreFatalError(diagnosis(path) + " first=" + first + " retry=" + error.description());
  }
  return true;
}

std::unique_ptr<LKContext> LKStoreContainer::newContext() const {
  return openStore(path_);
}

LKModelContainer::Folders LKModelContainer::Folders::ofThisUser() {
  return {directories::applicationSupport(), LKCollectionStore::shared().cachesDirectory()};
}

LKModelContainer& LKModelContainer::shared() {
  static LKModelContainer container(Folders::ofThisUser(),
                                    LKCollectionStore::shared().activeCollectionID());
  return container;
}

LKModelContainer::LKModelContainer(Folders folders, std::optional<UUID> activeCollectionID)
    : folders_(std::move(folders)), activeCollectionID_(activeCollectionID) {
  const fs::path path =
      activeCollectionID ? storeOf(*activeCollectionID) : folders_.support / "Larkspire.store";
  makeFolderOf(path);
  needsFullRebuild_ = openOrRebuildStore(path);
  current_ = std::make_shared<LKStoreContainer>(path);
}

fs::path LKModelContainer::storeOf(const UUID& collectionID) const {
  return folders_.caches / (collectionID.text() + ".store");
}

std::shared_ptr<const LKStoreContainer> LKModelContainer::container() const {
  const std::lock_guard guard(state_);
  return current_;
}

std::unique_ptr<LKContext> LKModelContainer::newContext() const {
  return container()->newContext();
}

std::shared_ptr<const LKStoreContainer> LKModelContainer::container(const UUID& collectionID) {
  {
    const std::lock_guard guard(state_);
    if (activeCollectionID_ == collectionID) return current_;
  }
  const std::lock_guard guard(opening_);
  Container& kept = containers_[collectionID];
  if (!kept) {
    const fs::path path = storeOf(collectionID);
    makeFolderOf(path);
    openOrRebuildStore(path);
    kept = std::make_shared<LKStoreContainer>(path);
  }
  return kept;
}

std::unique_ptr<LKContext> LKModelContainer::newContext(const UUID& collectionID) {
  return container(collectionID)->newContext();
}

bool LKModelContainer::switchToCollection(const LKCollectionRecord& record) {
  const std::lock_guard opening(opening_);
  const fs::path path = storeOf(record.id);
  makeFolderOf(path);
  const bool needsRebuild = openOrRebuildStore(path);
  const std::lock_guard guard(state_);
  current_ = std::make_shared<LKStoreContainer>(path);
  needsFullRebuild_ = needsRebuild;
  activeCollectionID_ = record.id;
  return needsRebuild;
}

bool LKModelContainer::needsFullRebuild() const {
  const std::lock_guard guard(state_);
  return needsFullRebuild_;
}

void LKModelContainer::clearRebuildFlag() {
  const std::lock_guard guard(state_);
  needsFullRebuild_ = false;
}

void LKModelContainer::forceRebuildOnNextSync() {
  const std::lock_guard guard(state_);
  needsFullRebuild_ = true;
}

std::optional<UUID> LKModelContainer::activeCollectionID() const {
  const std::lock_guard guard(state_);
  return activeCollectionID_;
}

}  // namespace lk
