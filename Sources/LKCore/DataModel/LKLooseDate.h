#pragma once

// Dates as people write them in tables: three numbers with "-", "/" or "." between them.
//
//     LKLooseDate::parse("31/12/24", std::nullopt)   // 31 December 2024
//     LKLooseDate::parse("03/04/05", true)           // 3 April 2005

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Time.h"

namespace lk::LKLooseDate {

// A year of four digits in front, year, month, day. Else the year stands behind, and of the other
// two the one above 12 is the day; where both could be, `dayFirst` tells, or the user's region. A
// year of up to two digits is one of 1930 to 2029. Anything else, also a day that does not exist and
// a text of more than 24 characters, gives nothing.
std::optional<Day> parse(std::string_view text, std::optional<bool> dayFirst);

// True when at least two cells are not blank and six of ten of those are dates.
bool isDateColumn(const std::vector<std::string>& cells);

// Whether the user's region writes the day before the month; true where it does not say.
bool regionPutsDayFirst();

// The same of a date pattern such as "M/d/y".
bool putsDayFirst(std::string_view pattern);

}  // namespace lk::LKLooseDate
