#include "LarkspireCLI/Support/CollectionRows.h"

#include <algorithm>
#include <system_error>

#include "LKCore/Base/Json.h"
#include "LKCore/Collections/LKCollectionStore.h"
#include "LarkspireCLI/Support/CLIActiveCollection.h"
#include "LarkspireCLI/Support/CollectionResolver.h"

namespace lk {

namespace {

bool storeExists(const UUID& id) {
  std::error_code ignored;
  return std::filesystem::exists(AppContainerRegistry::cacheStoreURL(id), ignored) ||
         std::filesystem::exists(LKCollectionStore::shared().cacheStorePath(id), ignored);
}

CollectionRow rowOf(const AppContainerRegistry::Collection& collection) {
  CollectionRow row;
  row.id = collection.id;
  row.name = collection.name;
  row.path = collection.path;
  row.mode = collection.mode.value_or(std::string(modeText(LKCollectionMode::larkspire)));
  row.isCloudSynced = collection.isCloudSynced.value_or(false);
  row.isDefault = collection.isDefault.value_or(false);
  row.createdDate = collection.createdDate;
  row.lastOpenedDate = collection.lastOpenedDate;
  row.noteCount = collection.noteCount.value_or(0);
  row.cacheAvailable = storeExists(collection.id);
  row.userAcceptedRisk = collection.userAcceptedRisk.value_or(false);
  return row;
}

CollectionRow rowOf(const LKCollectionRecord& record) {
  CollectionRow row;
  row.id = record.id;
  row.name = record.name;
  row.path = record.path;
  row.mode = modeText(record.mode);
  row.isCloudSynced = record.isCloudSynced;
  row.isDefault = record.isDefault;
  row.createdDate = formatISO8601(record.createdDate);
  row.lastOpenedDate = formatISO8601(record.lastOpenedDate);
  row.noteCount = record.noteCount;
  row.cacheAvailable = storeExists(record.id);
  row.userAcceptedRisk = record.userAcceptedRisk;
  row.description = record.collectionDescription;
  return row;
}

Json nullable(const std::optional<std::string>& value) {
  return value ? Json(*value) : Json();
}

Json json(const CollectionRow& row) {
  return {{"id", row.id.text()},
          {"name", row.name},
          {"path", row.path.string()},
          {"mode", row.mode},
          {"isCloudSynced", row.isCloudSynced},
          {"isDefault", row.isDefault},
          {"isActive", row.isActive},
          {"createdDate", nullable(row.createdDate)},
          {"lastOpenedDate", nullable(row.lastOpenedDate)},
          {"noteCount", row.noteCount},
          {"cacheAvailable", row.cacheAvailable},
          {"userAcceptedRisk", row.userAcceptedRisk},
          {"description", nullable(row.description)}};
}

template <typename Collections>
std::vector<CollectionRow> rowsOf(const Collections& collections,
                                  const std::optional<UUID>& activeID) {
  std::vector<CollectionRow> rows;
  rows.reserve(collections.size());
  for (const auto& collection : collections) rows.push_back(rowOf(collection));
  // The tool's own choice comes before what the registry holds active.
  const auto isIn = [&](const std::optional<UUID>& id) {
    return std::ranges::any_of(rows, [&](const CollectionRow& row) { return row.id == id; });
  };
  const auto chosen = CLIActiveCollection::get();
  const std::optional<UUID> active = isIn(chosen) ? chosen : activeID;
  for (CollectionRow& row : rows) row.isActive = row.id == active;
  return rows;
}

}  // namespace

std::vector<CollectionRow> collectionRows() {
  if (const auto app = AppContainerRegistry::read()) {
    return rowsOf(app->collections, app->activeCollectionID);
  }
  const LKCollectionStore& store = LKCollectionStore::shared();
  return rowsOf(store.collections(), store.activeCollectionID());
}

std::optional<CollectionRow> findCollectionRow(const std::string& reference) {
  if (const auto row = AppContainerRegistry::resolve(reference)) return rowOf(*row);
  if (const auto record = CollectionResolver::resolve(reference)) return rowOf(*record);
  return std::nullopt;
}

std::string collectionRowJson(const CollectionRow& row, const char* flag) {
  Json object = json(row);
  if (flag != nullptr) object[flag] = true;
  return printJson(object);
}

std::string collectionRowsJson(const std::vector<CollectionRow>& rows) {
  Json array = Json::array();
  for (const CollectionRow& row : rows) array.push_back(json(row));
  return printJson(array);
}

}  // namespace lk
