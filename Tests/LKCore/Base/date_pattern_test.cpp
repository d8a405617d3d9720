#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>

#include "LKCore/Base/DatePattern.h"

namespace lk {
namespace {

const Instant kMoment = *parseISO8601("2026-03-14T09:26:53Z");

void useZone(const char* zone) {
  setenv("TZ", zone, 1);
  tzset();
}

struct PatternRow {
  const char* name;
  std::string pattern;
  std::string locale;
  std::string text;
};

class DatePatterns : public ::testing::TestWithParam<PatternRow> {};

TEST_P(DatePatterns, WriteTheMoment) {
  useZone("UTC");
  EXPECT_EQ(formatted(kMoment, GetParam().pattern, GetParam().locale), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, DatePatterns,
    ::testing::Values(
        PatternRow{"words", "EEEE, d MMMM yyyy", "en_US", "Saturday, 14 March 2026"},
        PatternRow{"of_another_language", "EEEE, d. MMMM yyyy", "de-DE", "Samstag, 14. März 2026"},
        PatternRow{"of_another_calendar", "yyyy", "th_TH@calendar=buddhist", "2569"},
        PatternRow{"quoted_letters", "yyyy-'W'ww", "en_US", "2026-W11"},
        PatternRow{"open_quote", "yyyy 'x", "en_US", "2026 x"},
        PatternRow{"letters_without_meaning", "foo", "en_US", ""},
        PatternRow{"empty", "", "en_US", ""},
        PatternRow{"longest", "'" + std::string(kDatePatternLimit - 2, 'x') + "'", "en_US",
                   std::string(kDatePatternLimit - 2, 'x')},
        PatternRow{"too_long", "'" + std::string(kDatePatternLimit - 1, 'x') + "'", "en_US", ""},
        PatternRow{"hostile_locale", "yyyy", std::string(10'000, '_'), "2026"}),
    [](const auto& row) { return row.param.name; });

TEST(DatePatternZones, AreThoseOfTheCLibrary) {
  useZone("XYZ-5:30");
  EXPECT_EQ(formatted(kMoment, "HH:mm ZZZZZ", "en_US"), "14:56 +05:30");
  useZone("UTC");
  EXPECT_EQ(formatted(kMoment, "HH:mm", "en_US"), "09:26");
}

}  // namespace
}  // namespace lk
