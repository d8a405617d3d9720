#pragma once

// The settings that the application shares with its extensions and the tool. On this platform the
// user has one file of settings (Platform/UserDefaults.h), which every process reads as it is, so
// there is no second suite to mirror them into.

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "LKCore/Platform/UserDefaults.h"

namespace lk::LKSharedDefaults {

inline constexpr const char* kDailyNoteSeed = "dailyNoteSeed";

// The settings that extensions need.
inline constexpr std::array<std::string_view, 1> mirroredKeys = {kDailyNoteSeed};

// The integer that the user set for what new daily notes begin with; nothing when not set.
inline std::optional<int64_t> dailyNoteSeedRawValue() {
  return userDefaults::integer(kDailyNoteSeed);
}

}  // namespace lk::LKSharedDefaults
