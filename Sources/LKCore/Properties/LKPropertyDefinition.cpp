#include "LKCore/Properties/LKPropertyDefinition.h"

#include <algorithm>
#include <utility>

#include "LKCore/Base/Text.h"

namespace lk {

namespace {

UUID definitionID(const Json& row) {
  const auto id = UUID::parse(requiredString(row, "id"));
  if (!id) throw JsonError("\"id\" is not a UUID.");
  return *id;
}

LKPropertyType definitionType(const Json& row) {
  const std::string name = requiredString(row, "type");
  const auto type = propertyTypeNamed(name);
  if (!type) throw JsonError("\"" + name + "\" is not a type of property.");
  return *type;
}

std::vector<std::string> definitionOptions(const Json& row) {
  const auto options = row.find("options");
  if (options == row.end() || options->is_null()) return {};
  const auto isText = [](const Json& option) { return option.is_string(); };
  if (!options->is_array() || !std::all_of(options->begin(), options->end(), isText)) {
    throw JsonError("\"options\" is not an array of texts.");
  }
  return options->get<std::vector<std::string>>();
}

Instant definitionDate(const Json& row) {
  const auto text = stringMember(row, "createdDate");
  if (!text) return {};
  const auto date = parseISO8601(*text);
  if (!date) throw JsonError("\"createdDate\" is not a date.");
  return {date->seconds, 0};
}

std::optional<Json> definitionExpression(const Json& row) {
  const auto expression = row.find("expression");
  if (expression == row.end() || expression->is_null()) return std::nullopt;
  return std::optional<Json>(std::in_place, *expression);
}

void setOrEraseMember(Json& row, const char* key, std::optional<Json> value) {
  if (value) {
    row[key] = *std::move(value);
  } else {
    row.erase(key);
  }
}

std::optional<Json> numberOrNothing(const std::optional<double>& number) {
  return number ? std::optional(numberJson(*number)) : std::nullopt;
}

}  // namespace

LKPropertyDefinition decodeDefinition(const Json& row) {
  if (!row.is_object()) throw JsonError("It is not an object.");
  return {.id = definitionID(row),
          .name = requiredString(row, "name"),
          .type = definitionType(row),
          .options = definitionOptions(row),
          .createdDate = definitionDate(row),
          .expression = definitionExpression(row),
          .isRequired = boolMember(row, "isRequired").value_or(false),
          .minValue = numberMember(row, "minValue"),
          .maxValue = numberMember(row, "maxValue"),
          .maxLength = integerMember(row, "maxLength")};
}

void writeDefinition(const LKPropertyDefinition& definition, Json& row) {
  row["id"] = definition.id.text();
  row["name"] = definition.name;
  row["type"] = std::string(rawValue(definition.type));
  row["options"] = definition.options;
  row["createdDate"] = formatISO8601(definition.createdDate);
  row["isRequired"] = definition.isRequired;
  setOrEraseMember(row, "expression", definition.expression);
  setOrEraseMember(row, "minValue", numberOrNothing(definition.minValue));
  setOrEraseMember(row, "maxValue", numberOrNothing(definition.maxValue));
  setOrEraseMember(
      row, "maxLength",
      definition.maxLength ? std::optional(Json(*definition.maxLength)) : std::nullopt);
}

const LKPropertyDefinition* findDefinition(std::string_view name,
                                           const std::vector<LKPropertyDefinition>& schema) {
  const auto found = std::ranges::find_if(schema, [&](const LKPropertyDefinition& definition) {
    return text::equalIgnoringCase(definition.name, name);
  });
  return found == schema.end() ? nullptr : &*found;
}

}  // namespace lk
