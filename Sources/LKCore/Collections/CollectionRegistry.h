#pragma once

// The content of collections.json: an object with `collections`, an array of rows, and
// `activeCollectionID`, a UUID or absent. A row has the fields of LKCollectionRecord under their
// names, dates in ISO 8601, bytes in Base64:
//
//     {
//       "activeCollectionID" : "6F0C2A9E-41B7-4E55-9A7C-0E1B2C3D4E5F",
//       "collections" : [
//         {
//           "createdDate" : "2026-03-14T09:26:53Z",
//           "id" : "6F0C2A9E-41B7-4E55-9A7C-0E1B2C3D4E5F",
//           "isCloudSynced" : false,
//           ...
//
// A registry holds the document as it was read and changes only what it is told to: keys that
// this version does not know, and rows that it cannot read, are written back as they were.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Json.h"
#include "LKCore/Base/Time.h"
#include "LKCore/Base/UUID.h"
#include "LKCore/Collections/LKCollectionRecord.h"

namespace lk {

class CollectionRegistry {
 public:
  CollectionRegistry();  // no collections

  // Throws JsonError for text that is no registry: not JSON, or without the array of rows.
  static CollectionRegistry decode(std::string_view text);

  // The file's bytes.
  std::string text() const;

  // The rows that can be read, in their order. For each of the others a sentence goes to
  // `problems`, if given.
  std::vector<LKCollectionRecord> records(std::vector<std::string>* problems = nullptr) const;
  std::optional<UUID> activeID() const;

  void add(const LKCollectionRecord& record);
  void remove(const UUID& id);  // every row with the id
  void setActiveID(const std::optional<UUID>& id);
  void setLastOpened(const UUID& id, Instant date);

 private:
  explicit CollectionRegistry(Json document) : document_(std::move(document)) {}

  Json document_;
};

// A row as the registry writes it.
Json recordJson(const LKCollectionRecord& record);

}  // namespace lk
