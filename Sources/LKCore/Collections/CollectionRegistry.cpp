#include "LKCore/Collections/CollectionRegistry.h"

#include <algorithm>
#include <utility>

#include "LKCore/Base/Base64.h"

namespace lk {

namespace {

constexpr const char* kRows = "collections";
constexpr const char* kActive = "activeCollectionID";

template <typename Value>
Value required(std::optional<Value> value, const char* key) {
  if (!value) throw JsonError(std::string("\"") + key + "\" is missing.");
  return *std::move(value);
}

std::optional<UUID> uuidMember(const Json& object, const char* key) {
  const auto text = stringMember(object, key);
  if (!text) return std::nullopt;
  const auto id = UUID::parse(*text);
  if (!id) throw JsonError(std::string("\"") + key + "\" is not a UUID.");
  return id;
}

Instant dateMember(const Json& object, const char* key) {
  const auto text = stringMember(object, key);
  if (!text) return {};
  const auto date = parseISO8601(*text);
  if (!date) throw JsonError(std::string("\"") + key + "\" is not a date.");
  return *date;
}

// A mode that a later version made is one in which this version had better not write.
LKCollectionMode modeMember(const Json& object) {
  const auto text = stringMember(object, "mode");
  if (!text) return LKCollectionMode::larkspire;
  return parseMode(*text).value_or(LKCollectionMode::readOnly);
}

std::optional<std::string> bytesMember(const Json& object, const char* key) {
  const auto text = stringMember(object, key);
  return text ? base64Bytes(*text) : std::nullopt;
}

LKCollectionRecord decodeRow(const Json& row) {
  if (!row.is_object()) throw JsonError("It is not an object.");
  LKCollectionRecord record;
  record.id = required(uuidMember(row, "id"), "id");
  record.name = required(stringMember(row, "name"), "name");
  record.collectionDescription = stringMember(row, "collectionDescription");
  record.path = required(stringMember(row, "path"), "path");
  record.isCloudSynced = boolMember(row, "isCloudSynced").value_or(false);
  record.mode = modeMember(row);
  record.iconName = stringMember(row, "iconName");
  record.tintColorHex = stringMember(row, "tintColorHex");
  record.createdDate = dateMember(row, "createdDate");
  record.lastOpenedDate = dateMember(row, "lastOpenedDate");
  record.noteCount = integerMember(row, "noteCount").value_or(0);
  record.bookmarkData = bytesMember(row, "bookmarkData");
  record.userAcceptedRisk = boolMember(row, "userAcceptedRisk").value_or(false);
  record.isDefault = boolMember(row, "isDefault").value_or(false);
  return record;
}

bool hasID(const Json& row, const UUID& id) {
  try {
    return row.is_object() && uuidMember(row, "id") == id;
  } catch (const JsonError&) {
    return false;  // a row that another version wrote
  }
}

void set(Json& row, const char* key, const std::optional<std::string>& value) {
  if (value) row[key] = *value;
}

}  // namespace

Json recordJson(const LKCollectionRecord& record) {
  Json row = {{"id", record.id.text()},
              {"name", record.name},
              {"path", record.path.string()},
              {"isCloudSynced", record.isCloudSynced},
              {"mode", modeText(record.mode)},
              {"createdDate", formatISO8601(record.createdDate)},
              {"lastOpenedDate", formatISO8601(record.lastOpenedDate)},
              {"noteCount", record.noteCount},
              {"userAcceptedRisk", record.userAcceptedRisk},
              {"isDefault", record.isDefault}};
  set(row, "collectionDescription", record.collectionDescription);
  set(row, "iconName", record.iconName);
  set(row, "tintColorHex", record.tintColorHex);
  if (record.bookmarkData) row["bookmarkData"] = base64Text(*record.bookmarkData);
  return row;
}

CollectionRegistry::CollectionRegistry() : document_({{kRows, Json::array()}}) {}

CollectionRegistry CollectionRegistry::decode(std::string_view text) {
  Json document = parseJson(text);
  if (!document.is_object()) throw JsonError("The registry is not an object.");
  const auto rows = document.find(kRows);
  if (rows == document.end() || !rows->is_array()) {
    throw JsonError("The registry has no array \"collections\".");
  }
  return CollectionRegistry(std::move(document));
}

std::string CollectionRegistry::text() const {
  return printJson(document_) + "\n";
}

std::vector<LKCollectionRecord> CollectionRegistry::records(
    std::vector<std::string>* problems) const {
  std::vector<LKCollectionRecord> records;
  size_t number = 0;
  for (const Json& row : document_[kRows]) {
    ++number;
    try {
      records.push_back(decodeRow(row));
    } catch (const JsonError& error) {
      if (problems == nullptr) continue;
      problems->push_back(
          "Row " + std::to_string(number) +
          " of the collection registry cannot be read and is passed over: " + error.description());
    }
  }
  return records;
}

std::optional<UUID> CollectionRegistry::activeID() const {
  const auto id = document_.find(kActive);
  if (id == document_.end() || !id->is_string()) return std::nullopt;
  return UUID::parse(id->get_ref<const std::string&>());
}

void CollectionRegistry::add(const LKCollectionRecord& record) {
  document_[kRows].push_back(recordJson(record));
}

void CollectionRegistry::remove(const UUID& id) {
  Json& rows = document_[kRows];
  rows.erase(
      std::remove_if(rows.begin(), rows.end(), [&](const Json& row) { return hasID(row, id); }),
      rows.end());
}

void CollectionRegistry::setActiveID(const std::optional<UUID>& id) {
  if (id) {
    document_[kActive] = id->text();
  } else {
    document_.erase(kActive);
  }
}

void CollectionRegistry::setLastOpened(const UUID& id, Instant date) {
  for (Json& row : document_[kRows]) {
    if (hasID(row, id)) row["lastOpenedDate"] = formatISO8601(date);
  }
}

}  // namespace lk
