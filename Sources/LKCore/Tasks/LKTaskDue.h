#pragma once

#include "LKCore/Base/Time.h"

// When a task is late: from five in the afternoon of its due day on, in the current time zone.
//
//     LKTaskDue::isOverdue({2026, 3, 20}, Instant::now())
namespace lk::LKTaskDue {

inline constexpr int overdueHour = 17;

// 17:00:00 local time of the day, the first when the clocks show it twice. When they skip it, the
// moment at which they go on; when the zone knows no such time, the start of the day.
Instant cutoff(Day due);

// True at the cutoff and after it.
bool isOverdue(Day due, Instant now);

}  // namespace lk::LKTaskDue
