#pragma once

#include <cstdint>
#include <optional>

namespace lk {

// What a new daily note begins with, below its heading. The integers are those of the user's
// setting (LKSharedDefaults::dailyNoteSeedRawValue).
enum class DailySeed { blank = 0, overdueTasks = 1, overdueTasksAndActivity = 2 };

// `blank` when nothing is set and for an integer that means nothing.
constexpr DailySeed dailySeed(std::optional<int64_t> rawValue) {
  return rawValue && *rawValue >= 0 && *rawValue <= 2 ? static_cast<DailySeed>(*rawValue)
                                                      : DailySeed::blank;
}

}  // namespace lk
