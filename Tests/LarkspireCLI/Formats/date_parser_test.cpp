// Days as people type them, on Saturday, 14 March 2026 unless a row says otherwise.

#include <gtest/gtest.h>

#include <string>

#include "LarkspireCLI/Support/DateParser.h"

namespace lk {
namespace {

struct TypedDate {
  const char* name;
  const char* text;
  const char* day;  // empty: no date
  Day today = {2026, 3, 14};
};

class TypedDates : public testing::TestWithParam<TypedDate> {};

TEST_P(TypedDates, ReadAs) {
  const auto day = DateParser::parse(GetParam().text, GetParam().today);
  EXPECT_EQ(day ? LKDateOnly::text(*day) : "", GetParam().day);
}

INSTANTIATE_TEST_SUITE_P(
    Words, TypedDates,
    testing::Values(
        TypedDate{"today", "today", "2026-03-14"},
        TypedDate{"blanks_and_case", " \tYesterDay\n", "2026-03-13"},
        TypedDate{"iso", "2026-02-28", "2026-02-28"}, TypedDate{"iso_of_no_day", "2026-02-30", ""},
        TypedDate{"compact", "20260301", "2026-03-01"},
        TypedDate{"last_of_the_same_weekday", "last saturday", "2026-03-07"},
        TypedDate{"next_of_the_same_weekday", "next sat", "2026-03-21"},
        TypedDate{"next_monday", "Next  Monday", "2026-03-16"},
        TypedDate{"bare_weekday", "friday", "2026-03-20"},
        TypedDate{"bare_weekday_is_never_today", "saturday", "2026-03-21"},
        TypedDate{"day_and_month", "14 March", "2026-03-14"},
        TypedDate{"month_and_day_and_year", "Mar 14, 2027", "2027-03-14"},
        TypedDate{"ordinal", "1st jan", "2026-01-01"},
        TypedDate{"leap_day_in_no_leap_year", "february 29", ""},
        TypedDate{"leap_day", "29 feb 2028", "2028-02-29"},
        TypedDate{"month_without_day", "march 2026", ""},
        TypedDate{"short_year", "14 march 26", ""},
        TypedDate{"days_ahead", "in 3 days", "2026-03-17"},
        TypedDate{"months_ahead", "in 2 months", "2026-05-14"},
        TypedDate{"weeks_ago", "2 weeks ago", "2026-02-28"},
        TypedDate{"months_ago_over_new_year", "4 months ago", "2025-11-14"},
        TypedDate{"both_ahead_and_ago", "in 3 ago", ""},
        TypedDate{"neither_ahead_nor_ago", "3 weeks", ""}, TypedDate{"negative", "in -1 days", ""},
        TypedDate{"more_days_than_fit", "in 99999999999 days", ""},
        TypedDate{"beyond_the_calendar", "in 4000000 years", ""},
        TypedDate{"before_the_calendar", "4000000 weeks ago", ""},
        TypedDate{"next_month", "next month", "2026-04-14"},
        TypedDate{"last_year", "last year", "2025-03-14"},
        TypedDate{"end_of_month", "end of  month", "2026-03-31"},
        TypedDate{"shorter_month", "in 1 month", "2026-02-28", {2026, 1, 31}},
        TypedDate{"year_after_a_leap_day", "next year", "2025-02-28", {2024, 2, 29}},
        TypedDate{"end_of_december", "next month", "2027-01-31", {2026, 12, 31}},
        TypedDate{"weekday_before_the_epoch", "next monday", "1969-12-29", {1969, 12, 28}},
        TypedDate{"first_year", "last year", "", {1, 6, 1}}, TypedDate{"nothing", "", ""},
        TypedDate{"other_words", "soon", ""}, TypedDate{"words_after_it", "today please", ""}),
    [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace lk
