#include "LKCore/Properties/PropertySchemaDocument.h"

#include <algorithm>
#include <optional>

#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/Properties/LKBuiltInProperties.h"

namespace lk {

namespace {

// Of a row that another version wrote, too.
std::optional<std::string> schemaRowText(const Json& row, const char* key) {
  if (!row.is_object()) return std::nullopt;
  const auto found = row.find(key);
  return found != row.end() && found->is_string() ? std::optional(found->get<std::string>())
                                                  : std::nullopt;
}

std::optional<UUID> schemaRowID(const Json& row) {
  const auto text = schemaRowText(row, "id");
  return text ? UUID::parse(*text) : std::nullopt;
}

bool isReadableDefinition(const Json& row) {
  try {
    decodeDefinition(row);
    return true;
  } catch (const JsonError&) {
    return false;
  }
}

void requireNoBuiltIn(const UUID& id) {
  for (const LKPropertyDefinition& builtIn : LKBuiltInProperties::all()) {
    if (builtIn.id == id) throw LKPropertySchemaError::builtIn(builtIn.name);
  }
}

}  // namespace

PropertySchemaDocument PropertySchemaDocument::decode(std::string_view text) {
  Json rows = parseJson(text);
  if (!rows.is_array()) throw JsonError("The schema is not an array.");
  return PropertySchemaDocument(std::move(rows));
}

std::string PropertySchemaDocument::text() const {
  return printJson(rows_) + "\n";
}

std::vector<LKPropertyDefinition> PropertySchemaDocument::definitions(
    std::vector<std::string>* problems) const {
  std::vector<LKPropertyDefinition> definitions;
  for (size_t i = 0; i < rows_.size(); ++i) {
    try {
      LKPropertyDefinition definition = decodeDefinition(rows_[i]);
      const bool isBuiltIn = LKBuiltInProperties::allIDs().contains(definition.id);
      if (!isBuiltIn) definitions.push_back(std::move(definition));
    } catch (const JsonError& error) {
      if (problems == nullptr) continue;
      problems->push_back("Definition " + std::to_string(i + 1) +
                          " cannot be read and is passed over. " + error.description());
    }
  }
  return definitions;
}

Json* PropertySchemaDocument::rowWithID(const UUID& id) {
  const auto found = std::find_if(rows_.begin(), rows_.end(),
                                  [&](const Json& row) { return schemaRowID(row) == id; });
  return found == rows_.end() ? nullptr : &*found;
}

void PropertySchemaDocument::requireUsableName(const LKPropertyDefinition& definition) const {
  const std::string& name = definition.name;
  if (!isWritablePropertyKey(name) || isReservedPropertyName(name)) {
    throw LKPropertySchemaError::reservedName(name);
  }
  const bool isTaken =
      findDefinition(name, LKBuiltInProperties::all()) != nullptr ||
      std::any_of(rows_.begin(), rows_.end(), [&](const Json& row) {
        const auto other = schemaRowText(row, "name");
        return other && schemaRowID(row) != definition.id && text::equalIgnoringCase(*other, name);
      });
  if (isTaken) throw LKPropertySchemaError::duplicateName(name);
}

void PropertySchemaDocument::add(const LKPropertyDefinition& definition) {
  requireNoBuiltIn(definition.id);
  requireUsableName(definition);
  if (rowWithID(definition.id) != nullptr) {
    throw LKPropertySchemaError::duplicateName(definition.name);
  }
  Json row = Json::object();
  writeDefinition(definition, row);
  rows_.push_back(std::move(row));
}

void PropertySchemaDocument::update(const LKPropertyDefinition& definition) {
  requireNoBuiltIn(definition.id);
  Json* const row = rowWithID(definition.id);
  if (row == nullptr) throw LKPropertySchemaError::notFound(definition.id);
  requireUsableName(definition);
  writeDefinition(definition, *row);
}

void PropertySchemaDocument::remove(const UUID& id) {
  requireNoBuiltIn(id);
  if (rowWithID(id) == nullptr) throw LKPropertySchemaError::notFound(id);
  rows_.erase(std::remove_if(rows_.begin(), rows_.end(),
                             [&](const Json& row) { return schemaRowID(row) == id; }),
              rows_.end());
}

void PropertySchemaDocument::replaceAll(const std::vector<LKPropertyDefinition>& definitions) {
  Json rows = Json::array();
  for (const LKPropertyDefinition& definition : definitions) {
    if (LKBuiltInProperties::allIDs().contains(definition.id)) continue;
    const Json* const old = rowWithID(definition.id);
    Json row = old != nullptr ? *old : Json::object();
    writeDefinition(definition, row);
    rows.push_back(std::move(row));
  }
  for (const Json& row : rows_) {
    if (!isReadableDefinition(row)) rows.push_back(row);
  }
  rows_ = std::move(rows);
}

}  // namespace lk
