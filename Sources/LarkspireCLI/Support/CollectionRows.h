#pragma once

// The registered collections as `lk collections` shows them.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "LKCore/Base/UUID.h"
#include "LKCore/Collections/LKCollectionRecord.h"
#include "LarkspireCLI/Support/AppContainerRegistry.h"

namespace lk {

struct CollectionRow {
  UUID id;
  std::string name;
  std::filesystem::path path;
  std::string mode;
  bool isCloudSynced = false;
  bool isDefault = false;
  bool isActive = false;  // what a run without --collection works on
  std::optional<std::string> createdDate;
  std::optional<std::string> lastOpenedDate;
  int64_t noteCount = 0;
  bool cacheAvailable = false;  // a store file of the collection exists
  bool userAcceptedRisk = false;
  std::optional<std::string> description;
};

// The application's collections if its registry can be read, else the tool's. Creates nothing.
// Throws FileError when the tool's choice of collection cannot be read.
std::vector<CollectionRow> collectionRows();

// The collection that the reference names, in the application's registry or else in the tool's.
std::optional<CollectionRow> findCollectionRow(const std::string& reference);

// The row as a JSON object in the tool's form; absent values are null. `flag`, if any, is one
// more key with the value true.
std::string collectionRowJson(const CollectionRow& row, const char* flag = nullptr);
std::string collectionRowsJson(const std::vector<CollectionRow>& rows);

}  // namespace lk
