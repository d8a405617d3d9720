#include "LKCore/Queries/LKSavedQuery.h"

#include <algorithm>
#include <utility>

namespace lk {

namespace {

bool asksFor(const LKSavedQuery& query, LKQueryRule::Field field) {
  return std::ranges::any_of(query.rules, [&](const LKQueryRule& rule) {
    return rule.field == field && rule.op == LKQueryRule::Operator::isTrue;
  });
}

std::string requiredMember(const Json& object, const char* key) {
  if (auto text = stringMember(object, key)) return std::move(*text);
  throw JsonError(std::string("The query has no \"") + key + "\".");
}

UUID queryID(const Json& object) {
  const auto id = UUID::parse(requiredMember(object, "id"));
  if (!id) throw JsonError("\"id\" is no UUID.");
  return *id;
}

LKSavedQuery::Combiner queryCombiner(const Json& object) {
  const std::string text = requiredMember(object, "combiner");
  if (text == "all") return LKSavedQuery::Combiner::all;
  if (text == "any") return LKSavedQuery::Combiner::any;
  throw JsonError("\"combiner\" is neither \"all\" nor \"any\".");
}

// In whole seconds, and within the years that can be written again.
Instant queryDate(const Json& object) {
  auto date = parseISO8601(requiredMember(object, "createdDate"));
  if (date) date->nanoseconds = 0;
  if (!date || parseISO8601(formatISO8601(*date)) != date) {
    throw JsonError("\"createdDate\" is no ISO 8601 date.");
  }
  return *date;
}

std::vector<LKQueryRule> rulesIn(const Json& object) {
  const auto found = object.find("rules");
  if (found == object.end() || !found->is_array()) throw JsonError("\"rules\" is not an array.");
  std::vector<LKQueryRule> rules;
  for (const Json& each : *found) rules.push_back(ruleFromJson(each));
  return rules;
}

Json jsonOfRules(const std::vector<LKQueryRule>& rules) {
  Json array = Json::array();
  for (const LKQueryRule& rule : rules) array.push_back(jsonOf(rule));
  return array;
}

std::optional<LKTaskRuleGroup> groupIn(const Json& object) {
  const auto found = object.find("taskGroup");
  if (found == object.end() || found->is_null()) return std::nullopt;
  if (!found->is_object()) throw JsonError("\"taskGroup\" is not an object.");
  LKTaskRuleGroup group = {rulesIn(*found), *found};
  group.otherMembers.erase("rules");
  return group;
}

void setIfThere(Json& object, const char* key, const std::optional<std::string>& value) {
  if (value) object[key] = *value;
}

}  // namespace

bool LKSavedQuery::targetsTrashedNotes() const {
  return asksFor(*this, LKQueryRule::Field::isTrashed);
}

bool LKSavedQuery::targetsArchivedNotes() const {
  return asksFor(*this, LKQueryRule::Field::isArchived);
}

std::string_view combinerText(LKSavedQuery::Combiner combiner) {
  return combiner == LKSavedQuery::Combiner::all ? "all" : "any";
}

LKSavedQuery decodeQuery(std::string_view bytes) {
  Json object = parseJson(bytes);
  if (!object.is_object()) throw JsonError("The query is not an object.");
  LKSavedQuery query;
  query.id = queryID(object);
  query.name = requiredMember(object, "name");
  query.combiner = queryCombiner(object);
  query.rules = rulesIn(object);
  query.createdDate = queryDate(object);
  query.symbolName = stringMember(object, "symbolName");
  query.tintColorName = stringMember(object, "tintColorName");
  query.isBuiltIn = boolMember(object, "isBuiltIn").value_or(false);
  query.taskGroup = groupIn(object);
  for (const char* key : {"id", "name", "combiner", "rules", "createdDate", "symbolName",
                          "tintColorName", "isBuiltIn", "taskGroup"}) {
    object.erase(key);
  }
  query.otherMembers = std::move(object);
  return query;
}

std::string encodeQuery(const LKSavedQuery& query) {
  Json object = query.otherMembers;
  object["id"] = query.id.text();
  object["name"] = query.name;
  object["combiner"] = combinerText(query.combiner);
  object["rules"] = jsonOfRules(query.rules);
  object["createdDate"] = formatISO8601(query.createdDate);
  object["isBuiltIn"] = query.isBuiltIn;
  setIfThere(object, "symbolName", query.symbolName);
  setIfThere(object, "tintColorName", query.tintColorName);
  if (query.taskGroup) {
    Json group = query.taskGroup->otherMembers;
    group["rules"] = jsonOfRules(query.taskGroup->rules);
    object["taskGroup"] = std::move(group);
  }
  return printJson(object) + "\n";
}

}  // namespace lk
