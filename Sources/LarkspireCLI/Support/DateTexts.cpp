#include "LarkspireCLI/Support/DateTexts.h"

#include <ctime>
#include <string_view>

#include "LarkspireCLI/Support/CalendarNames.h"

namespace lk {

namespace {

constexpr int64_t kDaySeconds = 86'400;

int64_t dayNumber(int64_t seconds) {
  return seconds / kDaySeconds - (seconds % kDaySeconds < 0 ? 1 : 0);
}

void appendTwoDigits(std::string& text, int64_t value) {
  text.push_back(static_cast<char>('0' + value / 10));
  text.push_back(static_cast<char>('0' + value % 10));
}

// "09:26".
void appendMinute(std::string& text, int64_t secondOfDay) {
  appendTwoDigits(text, secondOfDay / 3600);
  text.push_back(':');
  appendTwoDigits(text, secondOfDay / 60 % 60);
}

int64_t zoneOffset(std::time_t seconds) {
  std::tm parts{};
  localtime_r(&seconds, &parts);
  return parts.tm_gmtoff;
}

std::string capitalised(std::string_view name) {
  std::string result(name);
  result.front() = static_cast<char>(result.front() - 'a' + 'A');
  return result;
}

}  // namespace

std::string DateTexts::iso8601(Instant instant) {
  const int64_t number = dayNumber(instant.seconds);
  const int64_t secondOfDay = instant.seconds - number * kDaySeconds;
  std::string text = day(number);
  text.push_back('T');
  appendMinute(text, secondOfDay);
  text.push_back(':');
  appendTwoDigits(text, secondOfDay % 60);
  text.push_back('Z');
  return text;
}

std::string DateTexts::localMinute(Instant instant) {
  const int64_t local = instant.seconds + localOffset(instant.seconds);
  const int64_t number = dayNumber(local);
  std::string text = day(number);
  text.push_back(' ');
  appendMinute(text, local - number * kDaySeconds);
  return text;
}

const std::string& DateTexts::day(int64_t number) {
  std::string& text = days_[number];
  if (text.empty()) text = LKDateOnly::utc({number * kDaySeconds, 0});
  return text;
}

int64_t DateTexts::localOffset(int64_t seconds) {
  const int64_t number = dayNumber(seconds);
  auto found = offsets_.find(number);
  if (found == offsets_.end()) {
    const int64_t first = zoneOffset(number * kDaySeconds);
    const bool isSteady = first == zoneOffset((number + 1) * kDaySeconds - 1);
    found = offsets_.emplace(number, isSteady ? std::optional(first) : std::nullopt).first;
  }
  return found->second ? *found->second : zoneOffset(seconds);
}

std::string spelledOut(Day day) {
  return capitalised(kWeekdayNames[weekdayOf(day)]) + " " + std::to_string(day.day) + " " +
         capitalised(kMonthNames[static_cast<size_t>(day.month - 1)]) + " " +
         std::to_string(day.year);
}

}  // namespace lk
