#include "LKCore/Tasks/LKTaskDue.h"

#include <algorithm>
#include <ctime>
#include <optional>
#include <tuple>

namespace lk::LKTaskDue {

namespace {

// Zones are at most 14 hours from UTC.
constexpr int64_t kWidestOffset = int64_t{15} * 3600;

std::tm wallTime(int64_t seconds) {
  const std::time_t time = seconds;
  std::tm parts{};
  localtime_r(&time, &parts);
  return parts;
}

// True when the clocks show the cutoff of the day or later.
bool hasReached(int64_t seconds, Day due) {
  const std::tm parts = wallTime(seconds);
  const Day day = {parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday};
  return std::tuple(day, parts.tm_hour) >= std::tuple(due, overdueHour);
}

// The moment at which the clocks show the hour, read as summer or as standard time; nothing when
// they do not show it then.
std::optional<int64_t> momentShown(Day due, int isSummerTime) {
  std::tm parts{};
  parts.tm_year = due.year - 1900;
  parts.tm_mon = due.month - 1;
  parts.tm_mday = due.day;
  parts.tm_hour = overdueHour;
  parts.tm_isdst = isSummerTime;
  const int64_t seconds = std::mktime(&parts);
  const std::tm shown = wallTime(seconds);
  const bool isThatTime = shown.tm_year == due.year - 1900 && shown.tm_mon == due.month - 1 &&
                          shown.tm_mday == due.day && shown.tm_hour == overdueHour &&
                          shown.tm_min == 0 && shown.tm_sec == 0;
  if (!isThatTime) return std::nullopt;
  return seconds;
}

// Where the clocks jump over the hour.
std::optional<int64_t> momentAfterGap(Day due) {
  const int64_t asUTC = due.utcMidnight().seconds + int64_t{overdueHour} * 3600;
  int64_t before = asUTC - kWidestOffset;
  int64_t reached = asUTC + kWidestOffset;
  if (hasReached(before, due) || !hasReached(reached, due)) return std::nullopt;
  while (reached - before > 1) {
    const int64_t middle = before + (reached - before) / 2;
    (hasReached(middle, due) ? reached : before) = middle;
  }
  return reached;
}

}  // namespace

Instant cutoff(Day due) {
  const auto summer = momentShown(due, 1);
  const auto standard = momentShown(due, 0);
  if (summer && standard) return {std::min(*summer, *standard), 0};
  if (summer) return {*summer, 0};
  if (standard) return {*standard, 0};
  if (const auto moment = momentAfterGap(due)) return {*moment, 0};
  return due.localStart();
}

bool isOverdue(Day due, Instant now) {
  // Asking the time zone is dear, and only on the day itself does the hour matter.
  const Day today = Day::local(now);
  return due == today ? now >= cutoff(due) : due < today;
}

}  // namespace lk::LKTaskDue
