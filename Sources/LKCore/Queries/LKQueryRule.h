#pragma once

// One condition of a saved query, as it stands in the query's file:
//
//     { "field" : "taskDueDate", "op" : "beforeDaysFromToday", "value" : "7" }
//
// The value is the text that a person typed; what it means is up to field and operator
// (LKQueryExecutor.h).

#include <optional>
#include <string>
#include <string_view>

#include "LKCore/Base/Json.h"

namespace lk {

struct LKQueryRule {
  enum class Field {
    tag,
    content,
    title,
    dateModified,
    dateCreated,
    isFavourite,
    hasTasks,
    isDailyNote,
    isTrashed,
    isArchived,
    size,
    taskDueDate,
    taskPriority,
    taskCompletion,
    taskProject,
    taskContext,
  };
  enum class Operator {
    is,
    isNot,
    contains,
    doesNotContain,
    withinLastDays,
    before,
    after,
    isTrue,
    isFalse,
    isOverdue,
    isToday,
    isThisWeek,
    isNextWeek,
    beforeDaysFromToday,
    greaterThan,
    lessThan,
    isUnder,
    notUnder,
    isNone,
  };

  Field field = Field::tag;
  Operator op = Operator::is;
  std::string value;
  Json otherMembers = Json::object();  // of its object in the file, kept when it is saved

  bool operator==(const LKQueryRule&) const = default;

  // True when the person has not filled in the value that this rule needs.
  bool isBlank() const;

  // The whole decimal number of days in a rule's value, blanks around it aside; 7 for anything
  // else.
  static int dayCount(std::string_view value);
};

// The words of the file, which are the names above; nothing for any other word.
std::string_view fieldText(LKQueryRule::Field field);
std::string_view operatorText(LKQueryRule::Operator op);
std::optional<LKQueryRule::Field> parseField(std::string_view text);
std::optional<LKQueryRule::Operator> parseOperator(std::string_view text);

// True for the fields that look at one task: taskDueDate and those behind it.
bool isTaskScoped(LKQueryRule::Field field);
// True for the operators that say everything themselves, such as `isToday`.
bool takesNoValue(LKQueryRule::Operator op);

// Reads a rule. "before" with a value like "+7", an older form, becomes `beforeDaysFromToday` with
// "7". Throws JsonError for what is no object with a known field, a known operator and a value.
LKQueryRule ruleFromJson(const Json& object);
Json jsonOf(const LKQueryRule& rule);

}  // namespace lk
