#include "LarkspireCLI/Support/AppContainerRegistry.h"

#include <algorithm>
#include <utility>

#include "LKCore/Base/Json.h"
#include "LKCore/Base/Log.h"
#include "LKCore/Platform/Directories.h"
#include "LKCore/Platform/Files.h"
#include "LarkspireCLI/Support/CollectionReference.h"

namespace lk::AppContainerRegistry {

namespace fs = std::filesystem;

namespace {

constexpr const char* kSupportInHome =
    "Library/Containers/com.larkspire.Larkspire-Mac/Data/Library/Application Support/Larkspire";

// Nothing for a row without the three required fields. Throws JsonError for a wrong type.
std::optional<Collection> decodeRow(const Json& row) {
  if (!row.is_object()) return std::nullopt;
  const auto id = UUID::parse(stringMember(row, "id").value_or(""));
  auto name = stringMember(row, "name");
  auto path = stringMember(row, "path");
  if (!id || !name || !path) return std::nullopt;
  return Collection{*id,
                    *std::move(name),
                    *std::move(path),
                    stringMember(row, "mode"),
                    boolMember(row, "isCloudSynced"),
                    boolMember(row, "isDefault"),
                    stringMember(row, "createdDate"),
                    stringMember(row, "lastOpenedDate"),
                    integerMember(row, "noteCount"),
                    boolMember(row, "userAcceptedRisk")};
}

Wrapper decode(const Json& document) {
  Wrapper wrapper;
  for (const Json& row : document.at("collections")) {
    try {
      if (auto collection = decodeRow(row)) wrapper.collections.push_back(*std::move(collection));
    } catch (const JsonError& error) {
      log::warning("A row of the application's registry is passed over: " + error.description());
    }
  }
  wrapper.activeCollectionID =
      UUID::parse(stringMember(document, "activeCollectionID").value_or(""));
  return wrapper;
}

}  // namespace

fs::path supportDir() {
  return directories::home() / kSupportInHome;
}

std::optional<Wrapper> read() {
  try {
    return decode(parseJson(readFile(supportDir() / "collections.json")));
  } catch (const Error& error) {
    log::debug("The application's registry is not used: " + error.description());
  } catch (const Json::exception& error) {
    log::warning(std::string("The application's registry is not used: ") + error.what());
  }
  return std::nullopt;
}

std::optional<Collection> resolve(const std::string& reference) {
  const auto wrapper = read();
  if (!wrapper) return std::nullopt;
  std::vector<CollectionName> names;
  for (const Collection& row : wrapper->collections) {
    names.push_back({row.id, row.name, row.path});
  }
  const auto found = findCollection(names, reference);
  return found ? std::optional(wrapper->collections[*found]) : std::nullopt;
}

std::optional<Collection> collectionWithID(const UUID& id) {
  const auto wrapper = read();
  if (!wrapper) return std::nullopt;
  const auto found = std::ranges::find(wrapper->collections, id, &Collection::id);
  return found == wrapper->collections.end() ? std::nullopt : std::optional(*found);
}

std::optional<Collection> collectionForDocumentsPath(const fs::path& path) {
  const auto wrapper = read();
  if (!wrapper) return std::nullopt;
  const fs::path folder = resolved(path);
  for (const Collection& row : wrapper->collections) {
    if (resolved(row.path) == folder) return row;
  }
  return std::nullopt;
}

fs::path cacheStoreURL(const UUID& collectionID) {
  return supportDir() / "caches" / (collectionID.text() + ".store");
}

}  // namespace lk::AppContainerRegistry
