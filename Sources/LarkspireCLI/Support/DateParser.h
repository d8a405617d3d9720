#pragma once

#include <optional>
#include <string_view>

#include "LKCore/Base/Time.h"

// Days as people type them on a command line, in English and in any case.
//
//     DateParser::parse("next friday")    DateParser::parse("14 March")    DateParser::parse("in 2 weeks")
namespace lk::DateParser {

// The first of these that the whole text is; anything else, and a day outside the years 1 to 9999,
// gives nothing:
//   today, yesterday, tomorrow
//   yyyy-MM-dd, yyyyMMdd
//   last WEEKDAY, next WEEKDAY      the nearest strictly before or after today; "fri" is Friday
//   14 March, Mar 14, 14th March 2026, March 14, 2026         this year when none is told
//   in N days|weeks|months|years, N days|weeks|months|years ago
//   next week|month|year, last week|month|year                as many days or months from today
//   WEEKDAY                         the next one, today excluded
//   end of month                    the last day of this month
// A day that the month so reached does not have becomes that month's last.
std::optional<Day> parse(std::string_view text, Day today = Day::local(Instant::now()));

}  // namespace lk::DateParser
