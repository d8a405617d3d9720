#pragma once

// The two kinds of date in the system, kept apart by type: an instant on the time line, and a
// calendar day without a zone.

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lk {

// A moment, counted from 1970-01-01T00:00:00Z without leap seconds.
struct Instant {
  int64_t seconds = 0;
  int32_t nanoseconds = 0;  // 0 to 999,999,999, always towards the future

  static Instant now();

  // The same time of day so many days later, or earlier, in the current time zone.
  Instant addingLocalDays(int days) const;

  auto operator<=>(const Instant&) const = default;
};

// A day of the proleptic Gregorian calendar.
struct Day {
  int year = 1970;
  int month = 1;  // 1 to 12
  int day = 1;    // 1 to 31

  // The day that the instant falls on, in the current time zone or in UTC.
  static Day local(Instant instant);
  static Day utc(Instant instant);

  // Nothing when there is no such day.
  static std::optional<Day> make(int year, int month, int day);

  Day adding(int days) const;

  // Midnight UTC of the day: the form in which a daily date is stored.
  Instant utcMidnight() const;
  // The first moment of the day in the current time zone.
  Instant localStart() const;
  // When the clocks of the current time zone show this hour, 0 to 23, on the day; where they skip
  // it, an hour beside it.
  Instant localHour(int hour) const;

  auto operator<=>(const Day&) const = default;
};

// "2026-03-14T09:26:53Z".
std::string formatISO8601(Instant instant);

// Reads a date with a time and a zone: "2026-03-14T09:26:53Z", fractional seconds allowed, the
// zone Z or ±hh:mm or ±hhmm. Years 0001 to 9999. Anything else gives nothing.
std::optional<Instant> parseISO8601(std::string_view text);

// The machine date forms, Gregorian and without locale. `local...` is in the current time zone.
namespace LKDateOnly {

std::string local(Instant instant);           // yyyy-MM-dd
std::string utc(Instant instant);             // yyyy-MM-dd
std::string localDayKey(Instant instant);     // yyyyMMdd
std::string utcDayKey(Instant instant);       // yyyyMMdd
std::string localMinute(Instant instant);     // yyyy-MM-dd'T'HH:mm
std::string localFileStamp(Instant instant);  // yyyy-MM-dd HHmm

std::string text(Day day);    // yyyy-MM-dd
std::string dayKey(Day day);  // yyyyMMdd

// Exactly yyyy-MM-dd or yyyyMMdd of a day that exists; anything else gives nothing.
std::optional<Day> parse(std::string_view text);
std::optional<Day> parseDayKey(std::string_view text);

// Midnight of a day written yyyy-MM-dd, in the current time zone or in UTC.
std::optional<Instant> localDate(std::string_view text);
std::optional<Instant> utcDate(std::string_view text);

// One of the machine forms as a value.
struct Formatter {
  std::string (*string)(Instant instant);
  std::optional<Instant> (*date)(std::string_view text);
};

// The form of a pattern, one of the four `local...` patterns above; nothing for any other.
std::optional<Formatter> machineFormatter(std::string_view pattern);

// The value of a date property: with a time "2026-03-14T09:26:53Z", with any zone and without
// fractional seconds, or else "2026-03-14T09:26"; without, "2026-03-14" or else the first of those.
std::optional<Instant> propertyDate(std::string_view text, bool includeTime);

}  // namespace LKDateOnly

}  // namespace lk
