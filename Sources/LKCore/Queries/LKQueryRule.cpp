#include "LKCore/Queries/LKQueryRule.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "LKCore/Base/Text.h"

namespace lk {

namespace {

constexpr int kDefaultDayCount = 7;

// In the order of the enumerations.
constexpr std::array<std::string_view, 16> kFieldTexts = {
    "tag",          "content",        "title",       "dateModified", "dateCreated", "isFavourite",
    "hasTasks",     "isDailyNote",    "isTrashed",   "isArchived",   "size",        "taskDueDate",
    "taskPriority", "taskCompletion", "taskProject", "taskContext"};
constexpr std::array<std::string_view, 19> kOperatorTexts = {"is",
                                                             "isNot",
                                                             "contains",
                                                             "doesNotContain",
                                                             "withinLastDays",
                                                             "before",
                                                             "after",
                                                             "isTrue",
                                                             "isFalse",
                                                             "isOverdue",
                                                             "isToday",
                                                             "isThisWeek",
                                                             "isNextWeek",
                                                             "beforeDaysFromToday",
                                                             "greaterThan",
                                                             "lessThan",
                                                             "isUnder",
                                                             "notUnder",
                                                             "isNone"};

static_assert(kFieldTexts.size() == static_cast<size_t>(LKQueryRule::Field::taskContext) + 1);
static_assert(kOperatorTexts.size() == static_cast<size_t>(LKQueryRule::Operator::isNone) + 1);

template <typename Value, size_t count>
std::optional<Value> valueNamed(const std::array<std::string_view, count>& texts,
                                std::string_view text) {
  const auto found = std::ranges::find(texts, text);
  if (found == texts.end()) return std::nullopt;
  return static_cast<Value>(found - texts.begin());
}

bool needsValue(LKQueryRule::Field field) {
  switch (field) {
    case LKQueryRule::Field::tag:
    case LKQueryRule::Field::content:
    case LKQueryRule::Field::title:
    case LKQueryRule::Field::dateModified:
    case LKQueryRule::Field::dateCreated:
    case LKQueryRule::Field::size:
    case LKQueryRule::Field::taskDueDate:
    case LKQueryRule::Field::taskProject:
    case LKQueryRule::Field::taskContext:
      return true;
    default:
      return false;
  }
}

void upgradeRelativeDate(LKQueryRule& rule) {
  if (rule.op != LKQueryRule::Operator::before || !rule.value.starts_with('+')) return;
  int64_t days = 0;
  if (!text::parseInteger(std::string_view(rule.value).substr(1), days)) return;
  rule.op = LKQueryRule::Operator::beforeDaysFromToday;
  rule.value.erase(0, 1);
}

std::string requiredText(const Json& object, const char* key) {
  if (auto text = stringMember(object, key)) return std::move(*text);
  throw JsonError(std::string("A rule has no \"") + key + "\".");
}

}  // namespace

bool LKQueryRule::isBlank() const {
  return text::trimmedBlanks(value).empty() && op != Operator::withinLastDays &&
         op != Operator::beforeDaysFromToday && !takesNoValue(op) && needsValue(field);
}

int LKQueryRule::dayCount(std::string_view value) {
  int days = kDefaultDayCount;
  text::parseInteger(text::trimmedBlanks(value), days);
  return days;
}

std::string_view fieldText(LKQueryRule::Field field) {
  return kFieldTexts[static_cast<size_t>(field)];
}

std::string_view operatorText(LKQueryRule::Operator op) {
  return kOperatorTexts[static_cast<size_t>(op)];
}

std::optional<LKQueryRule::Field> parseField(std::string_view text) {
  return valueNamed<LKQueryRule::Field>(kFieldTexts, text);
}

std::optional<LKQueryRule::Operator> parseOperator(std::string_view text) {
  return valueNamed<LKQueryRule::Operator>(kOperatorTexts, text);
}

bool isTaskScoped(LKQueryRule::Field field) {
  return field >= LKQueryRule::Field::taskDueDate;
}

bool takesNoValue(LKQueryRule::Operator op) {
  switch (op) {
    case LKQueryRule::Operator::isTrue:
    case LKQueryRule::Operator::isFalse:
    case LKQueryRule::Operator::isOverdue:
    case LKQueryRule::Operator::isToday:
    case LKQueryRule::Operator::isThisWeek:
    case LKQueryRule::Operator::isNextWeek:
    case LKQueryRule::Operator::isNone:
      return true;
    default:
      return false;
  }
}

LKQueryRule ruleFromJson(const Json& object) {
  if (!object.is_object()) throw JsonError("A rule is not an object.");
  const std::string fieldWord = requiredText(object, "field");
  const std::string operatorWord = requiredText(object, "op");
  const auto field = parseField(fieldWord);
  const auto op = parseOperator(operatorWord);
  if (!field) throw JsonError("\"" + fieldWord + "\" is no field of a rule.");
  if (!op) throw JsonError("\"" + operatorWord + "\" is no operator of a rule.");
  LKQueryRule rule = {*field, *op, requiredText(object, "value"), object};
  for (const char* key : {"field", "op", "value"}) rule.otherMembers.erase(key);
  upgradeRelativeDate(rule);
  return rule;
}

Json jsonOf(const LKQueryRule& rule) {
  Json object = rule.otherMembers;
  object["field"] = fieldText(rule.field);
  object["op"] = operatorText(rule.op);
  object["value"] = rule.value;
  return object;
}

}  // namespace lk
