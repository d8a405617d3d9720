#include "LKCore/Notifications/LKNotificationSettings.h"

#include "LKCore/Platform/UserDefaults.h"

namespace lk {

namespace {

constexpr int kMorning = 9;
constexpr int kAfternoon = 14;
constexpr int kEvening = 17;

}  // namespace

std::string_view displayName(LKTaskNotificationTiming timing) {
  switch (timing) {
    case LKTaskNotificationTiming::morningOf:
      return "Morning of due date (9 AM)";
    case LKTaskNotificationTiming::afternoonOf:
      return "Afternoon of due date (2 PM)";
    case LKTaskNotificationTiming::eveningOf:
      return "Evening of due date (5 PM)";
    case LKTaskNotificationTiming::dayBefore:
      return "Day before (9 AM)";
  }
  return "";
}

Instant fireDate(Day due, LKTaskNotificationTiming timing) {
  switch (timing) {
    case LKTaskNotificationTiming::morningOf:
      return due.localHour(kMorning);
    case LKTaskNotificationTiming::afternoonOf:
      return due.localHour(kAfternoon);
    case LKTaskNotificationTiming::eveningOf:
      return due.localHour(kEvening);
    case LKTaskNotificationTiming::dayBefore:
      return due.adding(-1).localHour(kMorning);
  }
  return due.localStart();
}

LKNotificationSettings LKNotificationSettings::current() {
  LKNotificationSettings settings;
  settings.enabled = userDefaults::boolean(LKNotificationSettingsKeys::enabled).value_or(false);
  const auto raw = userDefaults::integer(LKNotificationSettingsKeys::timing).value_or(0);
  if (raw >= 0 && raw <= static_cast<int64_t>(LKTaskNotificationTiming::dayBefore)) {
    settings.timing = static_cast<LKTaskNotificationTiming>(raw);
  }
  return settings;
}

}  // namespace lk
