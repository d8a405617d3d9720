#include "LKCore/Templates/LKTemplate.h"

namespace lk {

namespace {

JsonError notTemplate(const std::string& key, const std::string& wanted) {
  return JsonError("\"" + key + "\" is not " + wanted + ".");
}

UUID readUUID(const std::string& text) {
  const auto id = UUID::parse(text);
  if (!id) throw notTemplate("id", "a UUID");
  return *id;
}

Instant templateDate(const Json& object, const char* key) {
  const auto text = stringMember(object, key);
  if (!text) return {};
  const auto date = parseISO8601(*text);
  if (!date) throw notTemplate(key, "a date like 2026-03-14T09:26:53Z");
  return *date;
}

// Null for a member that is missing or null.
const Json* listMember(const Json& object, const char* key) {
  const auto found = object.find(key);
  if (found == object.end() || found->is_null()) return nullptr;
  if (!found->is_array()) throw notTemplate(key, "a list");
  return &*found;
}

std::vector<std::string> stringsMember(const Json& object, const char* key) {
  std::vector<std::string> strings;
  const Json* const list = listMember(object, key);
  if (list == nullptr) return strings;
  for (const Json& each : *list) {
    if (!each.is_string()) throw notTemplate(key, "a list of strings");
    strings.push_back(each.get<std::string>());
  }
  return strings;
}

std::map<std::string, std::string> stringMapMember(const Json& object, const char* key) {
  std::map<std::string, std::string> result;
  const auto found = object.find(key);
  if (found == object.end() || found->is_null()) return result;
  if (!found->is_object()) throw notTemplate(key, "an object");
  for (const auto& [name, value] : found->items()) {
    if (!value.is_string()) throw notTemplate(key, "an object of strings");
    result.emplace(name, value.get<std::string>());
  }
  return result;
}

LKPropertyType typeMember(const Json& object) {
  const auto name = stringMember(object, "type");
  if (!name) return LKPropertyType::text;
  const auto type = propertyTypeNamed(*name);
  if (!type) throw notTemplate("type", "the name of a property type");
  return *type;
}

LKTemplateParameter decodeParameter(const Json& object) {
  if (!object.is_object()) throw notTemplate("parameters", "a list of objects");
  LKTemplateParameter parameter;
  if (const auto id = stringMember(object, "id")) parameter.id = readUUID(*id);
  parameter.name = requiredString(object, "name");
  parameter.label = stringMember(object, "label").value_or(parameter.name);
  parameter.type = typeMember(object);
  parameter.options = stringsMember(object, "options");
  parameter.defaultValue = stringMember(object, "defaultValue").value_or("");
  parameter.required = boolMember(object, "required").value_or(false);
  parameter.autoTagNote = boolMember(object, "autoTagNote").value_or(false);
  return parameter;
}

Json encodeParameter(const LKTemplateParameter& parameter) {
  return {{"id", parameter.id.text()},      {"name", parameter.name},
          {"label", parameter.label},       {"type", std::string(rawValue(parameter.type))},
          {"options", parameter.options},   {"defaultValue", parameter.defaultValue},
          {"required", parameter.required}, {"autoTagNote", parameter.autoTagNote}};
}

void setTextMember(Json& object, const char* key, const std::optional<std::string>& value) {
  if (value) object[key] = *value;
}

}  // namespace

LKTemplate decodeTemplate(const Json& document) {
  if (!document.is_object()) throw JsonError("The file is not an object.");
  LKTemplate result;
  result.id = readUUID(requiredString(document, "id"));
  result.name = requiredString(document, "name");
  result.description = stringMember(document, "description");
  result.icon = stringMember(document, "icon");
  result.category = stringMember(document, "category");
  result.createdDate = templateDate(document, "createdDate");
  result.modifiedDate = templateDate(document, "modifiedDate");
  if (const Json* const parameters = listMember(document, "parameters")) {
    for (const Json& each : *parameters) result.parameters.push_back(decodeParameter(each));
  }
  result.propertyDefaults = stringMapMember(document, "propertyDefaults");
  result.tags = stringsMember(document, "tags");
  result.titleTemplate = requiredString(document, "titleTemplate");
  result.bodyTemplate = requiredString(document, "bodyTemplate");
  return result;
}

Json encodeTemplate(const LKTemplate& source) {
  Json parameters = Json::array();
  for (const LKTemplateParameter& each : source.parameters) {
    parameters.push_back(encodeParameter(each));
  }
  Json object = {{"id", source.id.text()},
                 {"name", source.name},
                 {"createdDate", formatISO8601(source.createdDate)},
                 {"modifiedDate", formatISO8601(source.modifiedDate)},
                 {"parameters", std::move(parameters)},
                 {"propertyDefaults", source.propertyDefaults},
                 {"tags", source.tags},
                 {"titleTemplate", source.titleTemplate},
                 {"bodyTemplate", source.bodyTemplate}};
  setTextMember(object, "description", source.description);
  setTextMember(object, "icon", source.icon);
  setTextMember(object, "category", source.category);
  return object;
}

}  // namespace lk
