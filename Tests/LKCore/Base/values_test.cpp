#include <gtest/gtest.h>

#include <cstdlib>
#include <set>
#include <string>

#include "LKCore/Base/Digest.h"
#include "LKCore/Base/Json.h"
#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/Time.h"
#include "LKCore/Base/UUID.h"

namespace lk {
namespace {

TEST(UUIDs, ReadAnyCaseAndWriteUpperCase) {
  const auto uuid = UUID::parse("3f2504e0-4F89-41d3-9a0c-0305e82c3301");
  ASSERT_TRUE(uuid.has_value());
  EXPECT_EQ(uuid->text(), "3F2504E0-4F89-41D3-9A0C-0305E82C3301");
  EXPECT_EQ(UUID::parse(uuid->lowercaseText()), uuid);
  for (const char* bad :
       {"", "3F2504E0-4F89-41D3-9A0C-0305E82C330", "3F2504E04F8941D39A0C0305E82C3301",
        "3F2504E0-4F89-41D3-9A0C-0305E82C330G", "3F2504E0-4F89-41D3-9A0C-0305E82C33012",
        "3F2504E0-4F89-41D3-9A0C_0305E82C3301"}) {
    EXPECT_FALSE(UUID::parse(bad).has_value()) << bad;
  }
}

TEST(UUIDs, RandomOnesDifferAndAreOfVersionFour) {
  std::set<UUID> seen;
  for (int i = 0; i < 1000; ++i) {
    const UUID uuid = UUID::random();
    EXPECT_TRUE(seen.insert(uuid).second);
    EXPECT_EQ(uuid.text()[14], '4');
  }
}

TEST(Digests, AreThePublishedOnes) {
  EXPECT_EQ(sha256Hex("abc", 32),
            "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(sha256Hex("", 8), "e3b0c44298fc1c14");
  EXPECT_EQ(sha1Hex("abc", 20), "a9993e364706816aba3e25717850c26c9cd0d89d");
  EXPECT_EQ(sha1Hex("abc", 4), "a9993e36");
}

TEST(JsonForm, IsSortedIndentedAndEscaped) {
  Json value = {{"b", {1, 2.5, true, nullptr}},
                {"a/b", "quote \" slash / back \\ tab \t bell \x07 \u00E9\u2028"},
                {"empty", Json::array()},
                {"none", Json::object()}};
  EXPECT_EQ(printJson(value),
            "{\n"
            "  \"a\\/b\" : \"quote \\\" slash \\/ back \\\\ tab \\t bell \\u0007 \u00E9\u2028\",\n"
            "  \"b\" : [\n    1,\n    2.5,\n    true,\n    null\n  ],\n"
            "  \"empty\" : [],\n"
            "  \"none\" : {}\n"
            "}");
  EXPECT_EQ(parseJson(printJson(value)), value);
}

TEST(JsonForm, ReplacesInvalidTextAndRefusesBadInput) {
  EXPECT_EQ(printJson(Json("a\xFFz")), "\"a\uFFFDz\"");
  EXPECT_THROW(parseJson(""), JsonError);
  EXPECT_THROW(parseJson("{\"a\":1} x"), JsonError);
  EXPECT_THROW(parseJson("\"\xFF\""), JsonError);
  EXPECT_THROW(parseJson(std::string(100'000, '[')), JsonError);
  EXPECT_NO_THROW(parseJson(std::string(150, '[') + std::string(150, ']')));
}

TEST(Patterns, MeanUnicodeAndReplaceEveryMatch) {
  const Pattern token(R"(\s*\b(?:due|done):\S+)", Pattern::Case::insensitive);
  EXPECT_EQ(token.replacingAll("pay DUE:1\u00A0done:2 overdue:3", ""), "pay overdue:3");
  EXPECT_EQ(Pattern("x*").replacingAll("a\u00E9", "-"), "-a-\u00E9-");
  EXPECT_THROW(Pattern("(a"), PatternError);
  const auto match = Pattern("(a)|(b)").find("xb");
  ASSERT_TRUE(match.has_value());
  EXPECT_FALSE((*match)[1].has_value());
  EXPECT_EQ((*match)[2]->of("xb"), "b");
}

TEST(Patterns, EscapedTextMatchesItself) {
  const std::string hostile = "a.b*[c](d)|e{1}^$\\-#?+ \u00E9";
  EXPECT_EQ(Pattern("^" + Pattern::escaped(hostile) + "$").findAll(hostile).size(), 1U);
}

struct DateCase {
  std::string name;
  std::string text;
  std::optional<int64_t> seconds;
};

class ISODates : public testing::TestWithParam<DateCase> {};

TEST_P(ISODates, AreReadWithTimeAndZoneOnly) {
  const auto instant = parseISO8601(GetParam().text);
  ASSERT_EQ(instant.has_value(), GetParam().seconds.has_value());
  if (instant) {
    EXPECT_EQ(instant->seconds, *GetParam().seconds);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ISODates,
    testing::Values(DateCase{"epoch", "1970-01-01T00:00:00Z", 0},
                    DateCase{"before_the_epoch", "1969-12-31T23:59:59Z", -1},
                    DateCase{"leap_day", "2024-02-29T12:00:00Z", 1709208000},
                    DateCase{"east", "1970-01-01T02:00:00+02:00", 0},
                    DateCase{"west_without_colon", "1969-12-31T19:00:00-0500", 0},
                    DateCase{"fraction", "1970-01-01T00:00:01.25Z", 1},
                    DateCase{"year_one", "0001-01-01T00:00:00Z", -62135596800},
                    DateCase{"no_such_day", "2023-02-29T00:00:00Z", std::nullopt},
                    DateCase{"no_zone", "2023-02-28T00:00:00", std::nullopt},
                    DateCase{"no_time", "2023-02-28", std::nullopt},
                    DateCase{"blank_for_t", "2023-02-28 00:00:00Z", std::nullopt},
                    DateCase{"hour_24", "2023-02-28T24:00:00Z", std::nullopt},
                    DateCase{"rest", "2023-02-28T00:00:00Zx", std::nullopt},
                    DateCase{"empty_fraction", "2023-02-28T00:00:00.Z", std::nullopt}),
    [](const auto& row) { return row.param.name; });

TEST(ISODates, WriteWhatTheyRead) {
  for (const char* text :
       {"2026-03-14T09:26:53Z", "0001-01-01T00:00:00Z", "9999-12-31T23:59:59Z"}) {
    EXPECT_EQ(formatISO8601(*parseISO8601(text)), text);
  }
}

// Sets the zone for one test.
class Days : public testing::Test {
 protected:
  void use(const char* zone) {
    setenv("TZ", zone, 1);
    tzset();
  }
  ~Days() override { use("UTC"); }
};

TEST_F(Days, BelongToAZone) {
  use("America/New_York");
  const Instant instant = *parseISO8601("2026-03-14T02:30:00Z");
  EXPECT_EQ(LKDateOnly::local(instant), "2026-03-13");
  EXPECT_EQ(LKDateOnly::utc(instant), "2026-03-14");
  EXPECT_EQ(LKDateOnly::localDayKey(instant), "20260313");
  EXPECT_EQ(LKDateOnly::utcDayKey(instant), "20260314");
  EXPECT_EQ(LKDateOnly::localMinute(instant), "2026-03-13T22:30");
  EXPECT_EQ(LKDateOnly::localFileStamp(instant), "2026-03-13 2230");
  EXPECT_EQ((Day{2026, 3, 14}.localStart()), *parseISO8601("2026-03-14T04:00:00Z"));
  EXPECT_EQ((Day{2026, 3, 14}.utcMidnight()), *parseISO8601("2026-03-14T00:00:00Z"));
}

TEST_F(Days, ReadTheirTwoFormsExactly) {
  EXPECT_EQ(LKDateOnly::parse("2024-02-29"), (Day{2024, 2, 29}));
  EXPECT_EQ(LKDateOnly::parseDayKey("20240229"), (Day{2024, 2, 29}));
  EXPECT_EQ((Day{2024, 2, 29}.adding(366)), (Day{2025, 3, 1}));
  for (const char* bad : {"2023-02-29", "2024-2-29", "20240229", "2024-02-29 ", ""}) {
    EXPECT_FALSE(LKDateOnly::parse(bad).has_value()) << bad;
  }
}

TEST_F(Days, ComeBackFromTheMachineForms) {
  use("America/New_York");
  const Instant minute = *parseISO8601("2026-03-14T02:30:00Z");
  for (const char* pattern : {"yyyy-MM-dd'T'HH:mm", "yyyy-MM-dd HHmm"}) {
    const auto formatter = LKDateOnly::machineFormatter(pattern);
    EXPECT_EQ(formatter->date(formatter->string(minute)), minute) << pattern;
    EXPECT_FALSE(formatter->date(formatter->string(minute) + " ").has_value()) << pattern;
    EXPECT_FALSE(formatter->date("2026-03-14").has_value()) << pattern;
  }
  for (const char* pattern : {"yyyy-MM-dd", "yyyyMMdd"}) {
    const auto formatter = LKDateOnly::machineFormatter(pattern);
    EXPECT_EQ(formatter->date(formatter->string(minute)), (Day{2026, 3, 13}.localStart()));
  }
  EXPECT_FALSE(LKDateOnly::machineFormatter("yyyy").has_value());
  EXPECT_EQ(LKDateOnly::utcDate("2026-03-14"), parseISO8601("2026-03-14T00:00:00Z"));
  EXPECT_FALSE(LKDateOnly::localDate("2026-02-30").has_value());
}

TEST_F(Days, AreReadFromPropertiesWithAndWithoutATime) {
  use("America/New_York");
  const struct {
    const char* text;
    const char* withTime;  // in UTC; null for none
    const char* withoutTime;
  } cases[] = {
      {"2026-03-14", nullptr, "2026-03-14T04:00:00Z"},
      {"2026-03-14T09:26", "2026-03-14T13:26:00Z", nullptr},
      {"2026-03-14T24:00", nullptr, nullptr},
      {"2026-03-14T09:26:53+02:00", "2026-03-14T07:26:53Z", "2026-03-14T07:26:53Z"},
      {"2026-03-14T09:26:53.5Z", nullptr, nullptr},
      {"tomorrow", nullptr, nullptr},
  };
  const auto wanted = [](const char* text) {
    return text == nullptr ? std::nullopt : parseISO8601(text);
  };
  for (const auto& row : cases) {
    EXPECT_EQ(LKDateOnly::propertyDate(row.text, true), wanted(row.withTime)) << row.text;
    EXPECT_EQ(LKDateOnly::propertyDate(row.text, false), wanted(row.withoutTime)) << row.text;
  }
}

}  // namespace
}  // namespace lk
