#include "LarkspireCLI/Support/DateParser.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LarkspireCLI/Support/CalendarNames.h"

namespace lk::DateParser {

namespace {

using Words = std::vector<std::string_view>;

// More than the calendar has, so that nothing below can overflow.
constexpr int kLargestCount = 4'000'000;

// The index of the name that the word is, in full or as its first three letters.
template <size_t N>
std::optional<int> indexOf(const std::array<std::string_view, N>& names, std::string_view word) {
  for (size_t i = 0; i < N; ++i) {
    if (word == names[i] || word == names[i].substr(0, 3)) return static_cast<int>(i);
  }
  return std::nullopt;
}

// Digits alone.
std::optional<int> number(std::string_view word) {
  int value = 0;
  if (word.find_first_not_of("0123456789") != std::string_view::npos) return std::nullopt;
  if (!text::parseInteger(word, value) || value > kLargestCount) return std::nullopt;
  return value;
}

std::optional<Day> checked(Day day) {
  return Day::make(day.year, day.month, day.day);
}

int lengthOfMonth(int year, int month) {
  int days = 28;
  while (Day::make(year, month, days + 1)) ++days;
  return days;
}

std::optional<Day> addingMonths(Day day, int months) {
  const int count = day.year * 12 + day.month - 1 + months;
  if (count < 12) return std::nullopt;
  const int year = count / 12;
  const int month = count % 12 + 1;
  if (!Day::make(year, month, 1)) return std::nullopt;
  return Day{year, month, std::min(day.day, lengthOfMonth(year, month))};
}

// `count` of a unit such as "week" or "weeks" from the day.
std::optional<Day> adding(Day day, int count, std::string_view unit) {
  if (unit.ends_with('s')) unit.remove_suffix(1);
  if (unit == "day") return checked(day.adding(count));
  if (unit == "week") return checked(day.adding(count * 7));
  if (unit == "month") return addingMonths(day, count);
  if (unit == "year") return addingMonths(day, count * 12);
  return std::nullopt;
}

std::optional<Day> namedDay(std::string_view text, Day today) {
  if (text == "today") return today;
  if (text == "yesterday") return checked(today.adding(-1));
  if (text == "tomorrow") return checked(today.adding(1));
  if (text == "end of month") {
    return Day{today.year, today.month, lengthOfMonth(today.year, today.month)};
  }
  return std::nullopt;
}

// 1 to 7 days from today, into the future or the past.
std::optional<Day> parseRelativeWeekday(int weekday, bool isNext, Day today) {
  const int ahead = (weekday - static_cast<int>(weekdayOf(today)) + 7) % 7;
  return checked(today.adding(isNext ? (ahead == 0 ? 7 : ahead) : ahead - 7));
}

// "next friday", "last week".
std::optional<Day> nextOrLast(const Words& words, Day today) {
  const bool isNext = words[0] == "next";
  if (words.size() != 2 || (!isNext && words[0] != "last")) return std::nullopt;
  if (const auto weekday = indexOf(kWeekdayNames, words[1])) {
    return parseRelativeWeekday(*weekday, isNext, today);
  }
  if (words[1] != "week" && words[1] != "month" && words[1] != "year") return std::nullopt;
  return adding(today, isNext ? 1 : -1, words[1]);
}

// "in 3 weeks", "3 weeks ago".
std::optional<Day> distance(const Words& words, Day today) {
  if (words.size() != 3) return std::nullopt;
  const bool isAhead = words[0] == "in";
  if (isAhead == (words[2] == "ago")) return std::nullopt;
  const auto count = number(words[isAhead ? 1 : 0]);
  if (!count) return std::nullopt;
  return adding(today, isAhead ? *count : -*count, words[isAhead ? 2 : 1]);
}

// "14" or "14th".
std::optional<int> dayOfMonth(std::string_view word) {
  for (const std::string_view ending : {"st", "nd", "rd", "th"}) {
    if (word.ends_with(ending)) {
      word.remove_suffix(ending.size());
      break;
    }
  }
  return word.empty() || word.size() > 2 ? std::nullopt : number(word);
}

// "14 march", "mar 14 2026"; the comma is gone already.
std::optional<Day> dayAndMonth(const Words& words, Day today) {
  if (words.size() < 2 || words.size() > 3) return std::nullopt;
  const bool monthFirst = indexOf(kMonthNames, words[0]).has_value();
  const auto month = indexOf(kMonthNames, words[monthFirst ? 0 : 1]);
  const auto day = dayOfMonth(words[monthFirst ? 1 : 0]);
  const auto year = words.size() == 2      ? std::optional(today.year)
                    : words[2].size() == 4 ? number(words[2])
                                           : std::nullopt;
  if (!month || !day || !year) return std::nullopt;
  return Day::make(*year, *month + 1, *day);
}

Words wordsOf(std::string_view text) {
  Words words;
  for (const std::string_view word : text::split(text, ' ')) {
    if (!word.empty()) words.push_back(word);
  }
  return words;
}

}  // namespace

std::optional<Day> parse(std::string_view text, Day today) {
  const std::string lower = text::lowercased(text::trimmed(text));
  if (const auto day = LKDateOnly::parse(lower)) return day;
  if (const auto day = LKDateOnly::parseDayKey(lower)) return day;

  std::string plain = lower;
  for (char& c : plain) {
    if (c == ',' || c == '\t') c = ' ';
  }
  const Words words = wordsOf(plain);
  if (words.empty()) return std::nullopt;
  std::string single(words[0]);
  for (size_t i = 1; i < words.size(); ++i) single.append(" ").append(words[i]);
  if (const auto day = namedDay(single, today)) return day;
  if (words.size() == 1) {
    const auto weekday = indexOf(kWeekdayNames, words[0]);
    return weekday ? parseRelativeWeekday(*weekday, true, today) : std::nullopt;
  }
  for (const auto& reader : {nextOrLast, distance, dayAndMonth}) {
    if (const auto day = reader(words, today)) return day;
  }
  return std::nullopt;
}

}  // namespace lk::DateParser
