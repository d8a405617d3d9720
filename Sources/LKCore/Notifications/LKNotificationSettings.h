#pragma once

// Whether and when the user wants to be reminded of tasks, from the user's settings:
//
//     { "taskNotificationTiming" : 3, "taskNotificationsEnabled" : true }

#include <string_view>

#include "LKCore/Base/Time.h"

namespace lk {

namespace LKNotificationSettingsKeys {

inline constexpr const char* enabled = "taskNotificationsEnabled";
inline constexpr const char* timing = "taskNotificationTiming";

}  // namespace LKNotificationSettingsKeys

// When the reminder of a task comes. The integers are what the settings hold.
enum class LKTaskNotificationTiming {
  morningOf = 0,
  afternoonOf = 1,
  eveningOf = 2,
  dayBefore = 3
};

// "Morning of due date (9 AM)".
std::string_view displayName(LKTaskNotificationTiming timing);

// The moment of the reminder, in the current time zone: 9, 14 or 17 o'clock of the due day, or 9
// o'clock of the day before.
Instant fireDate(Day due, LKTaskNotificationTiming timing);

struct LKNotificationSettings {
  bool enabled = false;
  LKTaskNotificationTiming timing = LKTaskNotificationTiming::morningOf;

  // As the settings are now. What is not set or not valid is as above.
  static LKNotificationSettings current();

  bool operator==(const LKNotificationSettings&) const = default;
};

}  // namespace lk
