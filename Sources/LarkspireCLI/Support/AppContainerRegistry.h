#pragma once

// The application's own registry, in its container, apart from the tool's. Everything here reads
// tolerantly: a file or a row that cannot be read counts as absent.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "LKCore/Base/UUID.h"

namespace lk::AppContainerRegistry {

struct Collection {
  UUID id;
  std::string name;
  std::filesystem::path path;
  std::optional<std::string> mode;
  std::optional<bool> isCloudSynced;
  std::optional<bool> isDefault;
  std::optional<std::string> createdDate;
  std::optional<std::string> lastOpenedDate;
  std::optional<int64_t> noteCount;
  std::optional<bool> userAcceptedRisk;

  bool operator==(const Collection&) const = default;
};

struct Wrapper {
  std::vector<Collection> collections;
  std::optional<UUID> activeCollectionID;
};

// The application's support folder under the home folder, there or not.
std::filesystem::path supportDir();

// The registry; nothing when it cannot be read or is no registry.
std::optional<Wrapper> read();

// The row that a user's reference names, see CollectionReference.h.
std::optional<Collection> resolve(const std::string& reference);

std::optional<Collection> collectionWithID(const UUID& id);

// The row whose folder, symbolic links resolved, is this one.
std::optional<Collection> collectionForDocumentsPath(const std::filesystem::path& path);

// The place of the collection's store in the application's caches, there or not.
std::filesystem::path cacheStoreURL(const UUID& collectionID);

}  // namespace lk::AppContainerRegistry
