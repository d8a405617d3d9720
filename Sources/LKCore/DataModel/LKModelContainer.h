#pragma once

// The stores of this process: the active collection's and, on demand, any other's.
//
// A store can be made again from the files. One that will not open is deleted and begun anew; one
// that opens but cannot be read is kept, and both put up the flag `needsFullRebuild`, which whoever
// has read all files takes down again.
//
//     LKModelContainer& model = LKModelContainer::shared();
//     if (model.switchToCollection(record)) ...   // read every file
//     std::unique_ptr<LKContext> index = model.newContext();
//
// May be used from several threads; a context belongs to the thread that asked for it.

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "LKCore/Base/UUID.h"
#include "LKCore/Collections/LKCollectionRecord.h"
#include "LKCore/DataModel/LKContext.h"

namespace lk {

// There is no store and none can be made. The description says why, and what SQLite said of both
// attempts; a program without its index ends with it.
class LKStoreFatalError : public LKStoreError {
 public:
  using LKStoreError::LKStoreError;
};

// One store file that was opened once.
class LKStoreContainer {
 public:
  explicit LKStoreContainer(std::filesystem::path path) : path_(std::move(path)) {}

  const std::filesystem::path& path() const noexcept { return path_; }
  // Throws LKStoreError.
  std::unique_ptr<LKContext> newContext() const;

 private:
  std::filesystem::path path_;
};

class LKModelContainer {
 public:
  // Where the stores lie.
  struct Folders {
    std::filesystem::path support;  // for "Larkspire.store", in use while no collection is active
    std::filesystem::path caches;   // for "<UUID>.store"

    // This user's, as the platform and the registry say.
    static Folders ofThisUser();
  };

  // The one of this process, opened with the first call on the registry's active collection.
  static LKModelContainer& shared();

  // Opens the collection's store, without one "Larkspire.store". Throws LKStoreFatalError.
  LKModelContainer(Folders folders, std::optional<UUID> activeCollectionID);

  // The active collection's container, and a fresh context on it. Throws LKStoreError.
  std::shared_ptr<const LKStoreContainer> container() const;
  std::unique_ptr<LKContext> newContext() const;

  // Those of any collection; opened once. Throws LKStoreError, LKStoreFatalError.
  std::shared_ptr<const LKStoreContainer> container(const UUID& collectionID);
  std::unique_ptr<LKContext> newContext(const UUID& collectionID);

  // Makes the collection the active one and tells whether its rows must be read from the files
  // again. Throws LKStoreFatalError; then the active one is as it was.
  bool switchToCollection(const LKCollectionRecord& record);

  bool needsFullRebuild() const;
  void clearRebuildFlag();
  void forceRebuildOnNextSync();
  std::optional<UUID> activeCollectionID() const;

 private:
  using Container = std::shared_ptr<const LKStoreContainer>;

  std::filesystem::path storeOf(const UUID& collectionID) const;

  const Folders folders_;
  mutable std::mutex state_;  // the three below; never held while a store is opened
  Container current_;
  bool needsFullRebuild_ = false;
  std::optional<UUID> activeCollectionID_;

  std::mutex
      opening_;  // `containers_`, and every opening, so that no store is opened twice at once
  std::map<UUID, Container> containers_;
};

// Opens the store at the path once, in a folder that is there, making it where there is none and deleting and making it again
// where it will not open. True when its rows must be read from the files again. Throws
// LKStoreFatalError.
bool openOrRebuildStore(const std::filesystem::path& path);

}  // namespace lk
