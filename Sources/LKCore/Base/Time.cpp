#include "LKCore/Base/Time.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <ctime>

namespace lk {

namespace {

constexpr int32_t kNanosecondsPerSecond = 1'000'000'000;
constexpr int64_t kSecondsPerDay = 86'400;

std::tm broken(Instant instant, bool isLocal) {
  const std::time_t seconds = instant.seconds;
  std::tm parts{};
  if (isLocal) {
    localtime_r(&seconds, &parts);
  } else {
    gmtime_r(&seconds, &parts);
  }
  return parts;
}

Day dayOf(const std::tm& parts) {
  return {parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday};
}

template <typename... Values>
std::string formatted(const char* format, Values... values) {
  std::array<char, 96> buffer{};
  std::snprintf(buffer.data(), buffer.size(), format, values...);
  return buffer.data();
}

std::string timeForm(const char* format, Instant instant) {
  const std::tm parts = broken(instant, true);
  return formatted(format, parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour,
                   parts.tm_min);
}

int64_t daysSinceEpoch(Day day) {
  return std::chrono::sys_days(std::chrono::year(day.year) / day.month / day.day)
      .time_since_epoch()
      .count();
}

// Takes `count` digits from the front of the text.
bool takeNumber(std::string_view& text, size_t count, int& value) {
  if (text.size() < count) return false;
  int result = 0;
  for (size_t i = 0; i < count; ++i) {
    if (text[i] < '0' || text[i] > '9') return false;
    result = result * 10 + (text[i] - '0');
  }
  text.remove_prefix(count);
  value = result;
  return true;
}

bool take(std::string_view& text, char expected) {
  if (!text.starts_with(expected)) return false;
  text.remove_prefix(1);
  return true;
}

// Digits after the seconds; at least one, the tenth and later ones carry no meaning.
bool takeFraction(std::string_view& text, int32_t& nanoseconds) {
  int32_t scale = kNanosecondsPerSecond / 10;
  size_t digits = 0;
  while (!text.empty() && text.front() >= '0' && text.front() <= '9') {
    nanoseconds += (text.front() - '0') * scale;
    scale /= 10;
    text.remove_prefix(1);
    ++digits;
  }
  return digits > 0;
}

std::optional<int64_t> takeZone(std::string_view& text) {
  if (take(text, 'Z') || take(text, 'z')) return 0;
  const bool isWest = text.starts_with('-');
  if (!take(text, '+') && !take(text, '-')) return std::nullopt;
  int hours = 0;
  int minutes = 0;
  if (!takeNumber(text, 2, hours)) return std::nullopt;
  take(text, ':');
  if (!takeNumber(text, 2, minutes) || hours > 23 || minutes > 59) return std::nullopt;
  const int64_t offset = int64_t{hours} * 3600 + int64_t{minutes} * 60;
  return isWest ? -offset : offset;
}

}  // namespace

Instant Instant::now() {
  std::timespec time{};
  clock_gettime(CLOCK_REALTIME, &time);
  return {time.tv_sec, static_cast<int32_t>(time.tv_nsec)};
}

Instant Instant::addingLocalDays(int days) const {
  std::tm parts = broken(*this, true);
  parts.tm_mday += days;
  parts.tm_isdst = -1;
  return {std::mktime(&parts), nanoseconds};
}

Day Day::local(Instant instant) {
  return dayOf(broken(instant, true));
}
Day Day::utc(Instant instant) {
  return dayOf(broken(instant, false));
}

std::optional<Day> Day::make(int year, int month, int day) {
  if (year < 1 || year > 9999 || month < 1 || month > 12 || day < 1) return std::nullopt;
  const auto date = std::chrono::year(year) / month / day;
  if (!date.ok()) return std::nullopt;
  return Day{year, month, day};
}

Day Day::adding(int days) const {
  return utc({(daysSinceEpoch(*this) + days) * kSecondsPerDay, 0});
}

Instant Day::utcMidnight() const {
  return {daysSinceEpoch(*this) * kSecondsPerDay, 0};
}

Instant Day::localStart() const {
  return localHour(0);
}

Instant Day::localHour(int hour) const {
  std::tm parts{};
  parts.tm_year = year - 1900;
  parts.tm_mon = month - 1;
  parts.tm_mday = day;
  parts.tm_hour = hour;
  parts.tm_isdst = -1;
  return {std::mktime(&parts), 0};
}

std::string formatISO8601(Instant instant) {
  const std::tm parts = broken(instant, false);
  return formatted("%04d-%02d-%02dT%02d:%02d:%02dZ", parts.tm_year + 1900, parts.tm_mon + 1,
                   parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec);
}

std::optional<Instant> parseISO8601(std::string_view text) {
  int year = 0;
  int month = 0;
  int dayOfMonth = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int32_t nanoseconds = 0;
  if (!takeNumber(text, 4, year) || !take(text, '-') || !takeNumber(text, 2, month) ||
      !take(text, '-') || !takeNumber(text, 2, dayOfMonth)) {
    return std::nullopt;
  }
  if (!take(text, 'T') && !take(text, 't')) return std::nullopt;
  if (!takeNumber(text, 2, hour) || !take(text, ':') || !takeNumber(text, 2, minute) ||
      !take(text, ':') || !takeNumber(text, 2, second)) {
    return std::nullopt;
  }
  if (take(text, '.') && !takeFraction(text, nanoseconds)) return std::nullopt;
  const std::optional<int64_t> offset = takeZone(text);
  const std::optional<Day> day = Day::make(year, month, dayOfMonth);
  if (!offset || !text.empty() || !day || hour > 23 || minute > 59 || second > 60) {
    return std::nullopt;
  }
  const int64_t secondOfDay = int64_t{hour} * 3600 + int64_t{minute} * 60 + second;
  const int64_t seconds = daysSinceEpoch(*day) * kSecondsPerDay + secondOfDay - *offset;
  return Instant{seconds, nanoseconds};
}

namespace LKDateOnly {

std::string text(Day day) {
  return formatted("%04d-%02d-%02d", day.year, day.month, day.day);
}
std::string dayKey(Day day) {
  return formatted("%04d%02d%02d", day.year, day.month, day.day);
}

std::string local(Instant instant) {
  return text(Day::local(instant));
}
std::string utc(Instant instant) {
  return text(Day::utc(instant));
}
std::string localDayKey(Instant instant) {
  return dayKey(Day::local(instant));
}
std::string utcDayKey(Instant instant) {
  return dayKey(Day::utc(instant));
}

std::string localMinute(Instant instant) {
  return timeForm("%04d-%02d-%02dT%02d:%02d", instant);
}

std::string localFileStamp(Instant instant) {
  return timeForm("%04d-%02d-%02d %02d%02d", instant);
}

std::optional<Day> parse(std::string_view text) {
  int year = 0;
  int month = 0;
  int day = 0;
  if (!takeNumber(text, 4, year) || !take(text, '-') || !takeNumber(text, 2, month) ||
      !take(text, '-') || !takeNumber(text, 2, day) || !text.empty()) {
    return std::nullopt;
  }
  return Day::make(year, month, day);
}

std::optional<Day> parseDayKey(std::string_view text) {
  int year = 0;
  int month = 0;
  int day = 0;
  if (!takeNumber(text, 4, year) || !takeNumber(text, 2, month) || !takeNumber(text, 2, day) ||
      !text.empty()) {
    return std::nullopt;
  }
  return Day::make(year, month, day);
}

namespace {

std::optional<Instant> localTime(std::optional<Day> day, int hour, int minute) {
  if (!day || hour > 23 || minute > 59) return std::nullopt;
  std::tm parts{};
  parts.tm_year = day->year - 1900;
  parts.tm_mon = day->month - 1;
  parts.tm_mday = day->day;
  parts.tm_hour = hour;
  parts.tm_min = minute;
  parts.tm_isdst = -1;
  return Instant{std::mktime(&parts), 0};
}

// A day in front, then the separator and the time with or without a colon.
std::optional<Instant> dateWithTime(std::string_view text, char separator, bool hasColon) {
  static constexpr size_t kDaySize = 10;
  const std::optional<Day> day = parse(text.substr(0, kDaySize));
  if (!day) return std::nullopt;
  text.remove_prefix(kDaySize);
  int hour = 0;
  int minute = 0;
  if (!take(text, separator) || !takeNumber(text, 2, hour) || (hasColon && !take(text, ':')) ||
      !takeNumber(text, 2, minute) || !text.empty()) {
    return std::nullopt;
  }
  return localTime(day, hour, minute);
}

std::optional<Instant> localMinuteDate(std::string_view text) {
  return dateWithTime(text, 'T', true);
}

std::optional<Instant> localFileStampDate(std::string_view text) {
  return dateWithTime(text, ' ', false);
}

std::optional<Instant> localDayKeyDate(std::string_view text) {
  const std::optional<Day> day = parseDayKey(text);
  return day ? std::optional(day->localStart()) : std::nullopt;
}

std::optional<Instant> isoMoment(std::string_view text) {
  return text.find('.') == std::string_view::npos ? parseISO8601(text) : std::nullopt;
}

}  // namespace

std::optional<Instant> localDate(std::string_view text) {
  const std::optional<Day> day = parse(text);
  return day ? std::optional(day->localStart()) : std::nullopt;
}

std::optional<Instant> utcDate(std::string_view text) {
  const std::optional<Day> day = parse(text);
  return day ? std::optional(day->utcMidnight()) : std::nullopt;
}

std::optional<Formatter> machineFormatter(std::string_view pattern) {
  if (pattern == "yyyy-MM-dd") return Formatter{local, localDate};
  if (pattern == "yyyyMMdd") return Formatter{localDayKey, localDayKeyDate};
  if (pattern == "yyyy-MM-dd'T'HH:mm") return Formatter{localMinute, localMinuteDate};
  if (pattern == "yyyy-MM-dd HHmm") return Formatter{localFileStamp, localFileStampDate};
  return std::nullopt;
}

std::optional<Instant> propertyDate(std::string_view text, bool includeTime) {
  if (!includeTime) {
    const std::optional<Instant> day = localDate(text);
    return day ? day : isoMoment(text);
  }
  const std::optional<Instant> moment = isoMoment(text);
  return moment ? moment : localMinuteDate(text);
}

}  // namespace LKDateOnly

}  // namespace lk
