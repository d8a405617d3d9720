#pragma once

// The registry of the collections known on this machine, one of them active.
//
// It lives in Larkspire/collections.json of the application support folder and is shared by every
// process of the user: each change takes the file's lock, reads the file anew, changes what is
// there and replaces the file, so that no registration is lost. Keys and rows that another
// version wrote stay as they are. A store object is used from one thread at a time.
//
// A change that cannot be saved still counts in memory; it is logged, and the FileError is thrown
// to the caller, who may tell the user or go on.
//
//     LKCollectionStore& store = LKCollectionStore::shared();
//     store.ensureDefaultCollection();
//     const auto active = store.activeCollection();

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "LKCore/Base/Time.h"
#include "LKCore/Base/UUID.h"
#include "LKCore/Collections/LKCollectionRecord.h"

namespace lk {

class CollectionRegistry;

// Posted after another collection became active.
inline constexpr const char* kCollectionDidSwitch = "com.larkspire.collectionDidSwitch";

// What `registerCollection` is told; the rest of the record it sets itself.
struct LKCollectionRegistration {
  std::string name;
  std::optional<std::string> collectionDescription;
  std::filesystem::path path;         // absolute
  std::optional<bool> isCloudSynced;  // nothing: as detectCloudSync says
  LKCollectionMode mode = LKCollectionMode::larkspire;
  std::optional<std::string> bookmarkData;
  bool userAcceptedRisk = false;
  // Sees what is registered by now, when no other process can add to it, and may throw.
  std::function<void(const std::vector<LKCollectionRecord>&)> check;
};

class LKCollectionStore {
 public:
  // Where the store keeps its files and where a first collection may go.
  struct Folders {
    std::filesystem::path support;  // holds collections.json and caches
    std::filesystem::path home;
    std::filesystem::path documents;  // the user's Documents folder
    std::optional<std::filesystem::path> ubiquityDocuments;
    std::optional<std::filesystem::path> groupContainer;  // its copy is read when support has none

    // This user's, as the platform says.
    static Folders ofThisUser();
  };
  using Clock = std::function<Instant()>;

  // The registry of this user, loaded at the first call.
  static LKCollectionStore& shared();

  // Loads the registry. Never fails: what cannot be read is logged and listed in `warnings`.
  // Creates nothing.
  explicit LKCollectionStore(Folders folders, Clock clock = Instant::now);
  ~LKCollectionStore();
  LKCollectionStore(const LKCollectionStore&) = delete;
  LKCollectionStore& operator=(const LKCollectionStore&) = delete;

  const std::vector<LKCollectionRecord>& collections() const noexcept { return collections_; }
  std::optional<UUID> activeCollectionID() const noexcept { return activeCollectionID_; }

  // The record of the active id, if it is registered.
  std::optional<LKCollectionRecord> activeCollection() const;
  std::optional<LKCollectionRecord> collectionWithID(const UUID& id) const;

  // What was wrong with the registry file, a sentence each: unreadable, damaged and kept aside
  // under a new name, a row passed over. Empty says that `collections` is all that is registered.
  const std::vector<std::string>& warnings() const noexcept { return warnings_; }

  // With no collection registered, registers the default one, makes its folder if needed, makes
  // it active and saves. Never throws: without a save it counts in memory for this run.
  void ensureDefaultCollection();

  // The record that `ensureDefaultCollection` would register now. Creates nothing.
  LKCollectionRecord plannedDefaultCollection() const;

  // Adds a collection; the first one registered becomes active. Throws FileError.
  LKCollectionRecord registerCollection(const LKCollectionRegistration& registration);

  // Drops the record and the collection's cache files, never its folder. When it was active, the
  // default record becomes active, or the first one where no default is registered. An id that is
  // not registered changes nothing. Throws FileError.
  void remove(const UUID& id);

  // Makes the collection active, stamps when it was opened and posts kCollectionDidSwitch. An id
  // that is not registered changes nothing. Throws FileError, after posting.
  void setActive(const UUID& id);

  // The collection whose folder is the nearest one above the path, or the path itself; symbolic
  // links count as what they lead to.
  std::optional<LKCollectionRecord> collectionContaining(const std::filesystem::path& path) const;
  bool isURLInsideAnyCollection(const std::filesystem::path& path) const;

  // The folder of the cache stores, and the store's place in it: "<UUID>.store".
  std::filesystem::path cachesDirectory() const;
  std::filesystem::path cacheStorePath(const UUID& id) const;

  // Writes the registry's copy in the group container, if there is one; never throws.
  void writeGroupMirror() const;

  // Security-scoped access. This platform opens plain paths: the bookmark resolves to the
  // record's path, and access is only remembered.
  static std::filesystem::path resolveBookmark(const LKCollectionRecord& record);
  void startAccessingCollection(const LKCollectionRecord& record);
  void stopAccessingCurrentCollection();
  const std::optional<std::filesystem::path>& activeSecurityScopedURL() const noexcept {
    return activeSecurityScopedURL_;
  }

 private:
  using Change = std::function<void(CollectionRegistry&)>;

  std::filesystem::path registryFile() const;
  void load();
  void adopt(CollectionRegistry registry, std::vector<std::string>* problems = nullptr);
  void change(const Change& apply);
  CollectionRegistry changeFile(const Change& apply);
  CollectionRegistry decodeOrKeepAside(const std::string& bytes);
  void warn(std::string message);

  Folders folders_;
  Clock clock_;
  std::unique_ptr<CollectionRegistry> registry_;  // the whole document, unknown parts included
  std::vector<LKCollectionRecord> collections_;
  std::optional<UUID> activeCollectionID_;
  std::vector<std::string> warnings_;
  std::optional<std::filesystem::path> activeSecurityScopedURL_;
};

}  // namespace lk
