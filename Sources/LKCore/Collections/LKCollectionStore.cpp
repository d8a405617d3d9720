#include "LKCore/Collections/LKCollectionStore.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "LKCore/Base/Log.h"
#include "LKCore/Base/Notices.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Collections/CollectionRegistry.h"
#include "LKCore/Collections/FolderRejection.h"
#include "LKCore/Collections/LKCollectionPath.h"
#include "LKCore/Collections/LKSharedContainer.h"
#include "LKCore/Platform/Directories.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Platform/SharedFile.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

constexpr const char* kRegistryName = "collections.json";

bool isFolder(const fs::path& path) {
  std::error_code ignored;
  return fs::is_directory(path, ignored);
}

const LKCollectionRecord* recordWithID(const std::vector<LKCollectionRecord>& records,
                                       const std::optional<UUID>& id) {
  const auto found = std::ranges::find_if(
      records, [&](const LKCollectionRecord& record) { return record.id == id; });
  return found == records.end() ? nullptr : &*found;
}

// True when `path` is `folder` or lies in it; both resolved.
bool isInside(const std::string& path, const std::string& folder) {
  if (!path.starts_with(folder)) return false;
  return path.size() == folder.size() || folder.ends_with('/') || path[folder.size()] == '/';
}

// What becomes active in place of a removed collection: the default one, else the first.
std::optional<UUID> successorID(const CollectionRegistry& registry) {
  const std::vector<LKCollectionRecord> records = registry.records();
  for (const LKCollectionRecord& record : records) {
    if (record.isDefault) return record.id;
  }
  return records.empty() ? std::nullopt : std::optional(records.front().id);
}

}  // namespace

// --- Making and loading --------------------------------------------------------------------------

LKCollectionStore::Folders LKCollectionStore::Folders::ofThisUser() {
  return {directories::applicationSupport() / "Larkspire", directories::home(),
          directories::documents(), directories::ubiquityDocuments(),
          LKSharedContainer::containerURLResolvingNow()};
}

LKCollectionStore& LKCollectionStore::shared() {
  static LKCollectionStore store(Folders::ofThisUser());
  return store;
}

LKCollectionStore::LKCollectionStore(Folders folders, Clock clock)
    : folders_(std::move(folders)),
      clock_(std::move(clock)),
      registry_(std::make_unique<CollectionRegistry>()) {
  load();
}

LKCollectionStore::~LKCollectionStore() = default;

fs::path LKCollectionStore::registryFile() const {
  return folders_.support / kRegistryName;
}

void LKCollectionStore::load() {
  fs::path file = registryFile();
  try {
    if (folders_.groupContainer && !nameIsTaken(file)) {
      file = *folders_.groupContainer / kRegistryName;
    }
    std::vector<std::string> problems;
    adopt(CollectionRegistry::decode(readFile(file)), &problems);
    for (std::string& problem : problems) warn(std::move(problem));
  } catch (const FileError& error) {
    const bool isMissing = error.code() == ENOENT || error.code() == ENOTDIR;
    if (!isMissing) warn("The collection registry cannot be read: " + error.description());
  } catch (const JsonError& error) {
    warn("The collection registry " + file.string() + " is damaged: " + error.description());
  }
}

void LKCollectionStore::warn(std::string message) {
  log::warning(message);
  warnings_.push_back(std::move(message));
}

void LKCollectionStore::adopt(CollectionRegistry registry, std::vector<std::string>* problems) {
  collections_ = registry.records(problems);
  activeCollectionID_ = registry.activeID();
  *registry_ = std::move(registry);
}

// --- Changing ------------------------------------------------------------------------------------

void LKCollectionStore::change(const Change& apply) {
  try {
    adopt(changeFile(apply));
  } catch (const FileError& error) {
    log::error("The collection registry could not be saved: " + error.description());
    CollectionRegistry inMemory = *registry_;
    apply(inMemory);
    adopt(std::move(inMemory));
    throw;
  }
  writeGroupMirror();
}

// Applies the change to what the file holds by now, which may be more than this store has loaded.
CollectionRegistry LKCollectionStore::changeFile(const Change& apply) {
  CollectionRegistry changed;
  changeSharedFile(registryFile(), registry_->text(), [&](const std::string& before) {
    changed = decodeOrKeepAside(before);
    apply(changed);
    return changed.text();
  });
  return changed;
}

// A registry that does not decode may still be mended by hand, so it is not written over before
// its bytes are safe under another name.
CollectionRegistry LKCollectionStore::decodeOrKeepAside(const std::string& bytes) {
  try {
    return CollectionRegistry::decode(bytes);
  } catch (const JsonError&) {
    const fs::path kept = keepDamagedFile(registryFile(), bytes, clock_());
    warn("The damaged collection registry was kept as " + kept.string() + ".");
    return {};
  }
}

LKCollectionRecord LKCollectionStore::plannedDefaultCollection() const {
  LKCollectionRecord record;
  record.id = UUID::random();
  record.name = "Larkspire";
  record.isDefault = true;
  record.createdDate = clock_();
  record.lastOpenedDate = record.createdDate;
  const fs::path cloud = folders_.home / LKCollectionPath::kCloudDocumentsInHome;
  if (folders_.ubiquityDocuments && isFolder(*folders_.ubiquityDocuments)) {
    record.path = *folders_.ubiquityDocuments;
    record.isCloudSynced = true;
  } else if (isFolder(cloud)) {
    record.path = cloud;
    record.isCloudSynced = true;
  } else {
    record.path = folders_.documents / "Larkspire";
  }
  return record;
}

void LKCollectionStore::ensureDefaultCollection() {
  if (!collections_.empty()) return;
  const LKCollectionRecord record = plannedDefaultCollection();
  try {
    createFolders(record.path);
  } catch (const FileError& error) {
    log::error("The default collection's folder could not be made: " + error.description());
  }
  try {
    change([&](CollectionRegistry& registry) {
      if (!registry.records().empty()) return;  // another process was faster
      registry.add(record);
      registry.setActiveID(record.id);
    });
  } catch (const FileError&) {
    return;  // logged by `change`; the record counts in memory
  }
}

LKCollectionRecord LKCollectionStore::registerCollection(
    const LKCollectionRegistration& registration) {
  // JSON cannot name such a folder, and another name would lead elsewhere.
  if (!text::isValidUTF8(registration.path.native())) throw FileError(registration.path, EILSEQ);
  LKCollectionRecord record;
  record.id = UUID::random();
  record.name = registration.name;
  record.collectionDescription = registration.collectionDescription;
  record.path = registration.path;
  record.isCloudSynced = registration.isCloudSynced.value_or(detectCloudSync(registration.path));
  record.mode = registration.mode;
  record.createdDate = clock_();
  record.lastOpenedDate = record.createdDate;
  record.bookmarkData = registration.bookmarkData;
  record.userAcceptedRisk = registration.userAcceptedRisk;
  change([&](CollectionRegistry& registry) {
    const std::vector<LKCollectionRecord> others = registry.records();
    if (registration.check) registration.check(others);
    const bool isFirst = others.empty();
    registry.add(record);
    if (isFirst) registry.setActiveID(record.id);
  });
  return record;
}

void LKCollectionStore::remove(const UUID& id) {
  if (!collectionWithID(id)) return;
  for (const char* companion : {"", "-shm", "-wal"}) {
    std::error_code ignored;  // a cache is rebuilt when it is missing, and rightly so when it stays
    fs::remove(cacheStorePath(id).concat(companion), ignored);
  }
  change([&](CollectionRegistry& registry) {
    registry.remove(id);
    if (registry.activeID() == id) registry.setActiveID(successorID(registry));
  });
}

void LKCollectionStore::setActive(const UUID& id) {
  bool isKnown = false;
  const auto activate = [&](CollectionRegistry& registry) {
    isKnown = recordWithID(registry.records(), id) != nullptr;
    if (!isKnown) return;
    registry.setActiveID(id);
    registry.setLastOpened(id, clock_());
  };
  try {
    change(activate);
  } catch (const FileError&) {
    if (isKnown) notices::post(kCollectionDidSwitch);
    throw;
  }
  if (isKnown) notices::post(kCollectionDidSwitch);
}

void LKCollectionStore::writeGroupMirror() const {
  if (!folders_.groupContainer) {
    log::debug("GROUPMIRROR: no container URL — nothing written");
    return;
  }
  const fs::path mirror = *folders_.groupContainer / kRegistryName;
  try {
    replaceFile(mirror, registry_->text());
    log::debug("GROUPMIRROR: wrote " + std::to_string(collections_.size()) + " collections to " +
               mirror.string());
  } catch (const FileError& error) {
    log::error("GROUPMIRROR: write FAILED " + error.description());
  }
}

// --- Asking --------------------------------------------------------------------------------------

std::optional<LKCollectionRecord> LKCollectionStore::activeCollection() const {
  const LKCollectionRecord* record = recordWithID(collections_, activeCollectionID_);
  return record == nullptr ? std::nullopt : std::optional(*record);
}

std::optional<LKCollectionRecord> LKCollectionStore::collectionWithID(const UUID& id) const {
  const LKCollectionRecord* record = recordWithID(collections_, id);
  return record == nullptr ? std::nullopt : std::optional(*record);
}

std::optional<LKCollectionRecord> LKCollectionStore::collectionContaining(
    const fs::path& path) const {
  const std::string wanted = resolved(path).string();
  const LKCollectionRecord* nearest = nullptr;
  size_t longest = 0;
  for (const LKCollectionRecord& record : collections_) {
    const std::string folder = resolved(record.path).string();
    if (!isInside(wanted, folder) || (nearest != nullptr && folder.size() <= longest)) continue;
    nearest = &record;
    longest = folder.size();
  }
  return nearest == nullptr ? std::nullopt : std::optional(*nearest);
}

bool LKCollectionStore::isURLInsideAnyCollection(const fs::path& path) const {
  return collectionContaining(path).has_value();
}

fs::path LKCollectionStore::cachesDirectory() const {
  return folders_.support / "caches";
}

fs::path LKCollectionStore::cacheStorePath(const UUID& id) const {
  return cachesDirectory() / (id.text() + ".store");
}

// --- Access --------------------------------------------------------------------------------------

fs::path LKCollectionStore::resolveBookmark(const LKCollectionRecord& record) {
  return record.path;
}

void LKCollectionStore::startAccessingCollection(const LKCollectionRecord& record) {
  activeSecurityScopedURL_ = resolveBookmark(record);
}

void LKCollectionStore::stopAccessingCurrentCollection() {
  activeSecurityScopedURL_.reset();
}

}  // namespace lk
