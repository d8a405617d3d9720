#pragma once

// English names of the calendar, lower-cased, for reading and writing dates.

#include <array>
#include <cstdint>
#include <string_view>

#include "LKCore/Base/Time.h"

namespace lk {

inline constexpr std::array<std::string_view, 7> kWeekdayNames = {
    "sunday", "monday", "tuesday", "wednesday", "thursday", "friday", "saturday"};
inline constexpr std::array<std::string_view, 12> kMonthNames = {
    "january", "february", "march",     "april",   "may",      "june",
    "july",    "august",   "september", "october", "november", "december"};

// The index in kWeekdayNames.
inline size_t weekdayOf(Day day) {
  constexpr int64_t kSecondsPerDay = 86'400;
  const int64_t days = day.utcMidnight().seconds / kSecondsPerDay;  // no remainder
  return static_cast<size_t>(((days + 4) % 7 + 7) % 7);             // 1970-01-01 was a Thursday
}

}  // namespace lk
