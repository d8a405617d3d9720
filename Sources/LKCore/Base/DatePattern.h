#pragma once

// Dates written by a pattern that a person chose: "EEEE, d MMMM" in a template, "yyyy-'W'ww" in a
// setting. The letters are those of the Unicode date format patterns; the time zone is the
// current one, as everywhere else. The forms that machines read are in Time.h.
//
//     formatted(now, "EEEE, d MMMM yyyy", "de_DE")    // "Samstag, 14. März 2026"

#include <cstddef>
#include <string>
#include <string_view>

#include "LKCore/Base/Time.h"

namespace lk {

inline constexpr size_t kDatePatternLimit = 256;  // UTF-8 bytes

// The instant by the pattern, with the names, digits and calendar of the locale ("de_DE",
// "de-DE", "en_US_POSIX"). The empty locale is the user's; one that is not known falls back on
// its language, then on names that belong to none. Empty when the pattern is empty, longer than
// `kDatePatternLimit` or holds an unquoted letter that means nothing. Never throws for a pattern.
std::string formatted(Instant instant, std::string_view icuPattern, std::string_view locale);

// The day as the locale writes it in full, "Saturday, March 14, 2026", in the current time zone.
std::string formattedFullDate(Instant instant, std::string_view locale);

}  // namespace lk
