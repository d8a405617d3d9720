#include "LKCore/ParagraphModel/LKTaskDetail.h"

#include <array>
#include <limits>
#include <string_view>

#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/Text.h"

namespace lk {

namespace {

constexpr std::array<std::string_view, 12> kMonthNames = {"jan", "feb", "mar", "apr", "may", "jun",
                                                          "jul", "aug", "sep", "oct", "nov", "dec"};

// 1 to 12, or 0 for another word.
int monthNumber(std::string_view name) {
  for (size_t i = 0; i < kMonthNames.size(); ++i) {
    if (text::lowercased(name) == kMonthNames[i]) return static_cast<int>(i) + 1;
  }
  return 0;
}

void putDate(Json& object, const char* key, const std::optional<Instant>& date) {
  if (date) object[key] = formatISO8601(*date);
}

std::optional<Instant> dateMember(const Json& object, const char* key) {
  const std::optional<std::string> text = stringMember(object, key);
  if (!text) return std::nullopt;
  const std::optional<Instant> date = parseISO8601(*text);
  if (!date) throw JsonError(std::string("\"") + key + "\" is not a date.");
  return date;
}

int32_t smallMember(const Json& object, const char* key) {
  const int64_t value = integerMember(object, key).value_or(0);
  if (value < std::numeric_limits<int32_t>::min() || value > std::numeric_limits<int32_t>::max()) {
    throw JsonError(std::string("\"") + key + "\" is out of range.");
  }
  return static_cast<int32_t>(value);
}

}  // namespace

void LKTaskDetail::parse() {
  static const Pattern marking(
      R"(\s@done\(([A-Za-z]{3})\s+([0-9]{1,2})(?:\s*,\s*|\s+)([0-9]{4})\))");
  const std::optional<Pattern::Match> match = marking.find(text);
  if (!match) return;
  const auto group = [&](size_t number) { return (*match)[number]->of(text); };
  int day = 0;
  int year = 0;
  if (!text::parseInteger(group(2), day) || !text::parseInteger(group(3), year)) return;
  const std::optional<Day> date = Day::make(year, monthNumber(group(1)), day);
  if (date) dateCompleted = date->localStart();
}

Json taskDetailJson(const LKTaskDetail& detail) {
  Json object = {{"text", detail.text},
                 {"priority", detail.priority},
                 {"isComplete", detail.isComplete},
                 {"comments", detail.comments},
                 {"reminderSet", detail.reminderSet},
                 {"percentComplete", detail.percentComplete}};
  putDate(object, "dateCreated", detail.dateCreated);
  putDate(object, "dateCompleted", detail.dateCompleted);
  putDate(object, "dateDue", detail.dateDue);
  putDate(object, "startDate", detail.startDate);
  return object;
}

LKTaskDetail parseTaskDetail(const Json& object) {
  if (!object.is_object()) throw JsonError("A task's detail is not an object.");
  return {.dateCreated = dateMember(object, "dateCreated"),
          .text = stringMember(object, "text").value_or(""),
          .dateCompleted = dateMember(object, "dateCompleted"),
          .dateDue = dateMember(object, "dateDue"),
          .startDate = dateMember(object, "startDate"),
          .priority = smallMember(object, "priority"),
          .isComplete = boolMember(object, "isComplete").value_or(false),
          .comments = stringMember(object, "comments").value_or(""),
          .reminderSet = boolMember(object, "reminderSet").value_or(false),
          .percentComplete = smallMember(object, "percentComplete")};
}

}  // namespace lk
