#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

#include "LKCore/Base/Time.h"

namespace lk {

// The dates of many rows as text. It remembers what it worked out of each day, since calendar and
// time zone cost more than all else that a row is made of.
class DateTexts {
 public:
  // As formatISO8601 writes it.
  std::string iso8601(Instant instant);
  // The short form for people: "2026-03-14 09:26", in the current time zone.
  std::string localMinute(Instant instant);

 private:
  const std::string& day(int64_t number);
  int64_t localOffset(int64_t seconds);

  std::unordered_map<int64_t, std::string> days_;  // by days since the epoch
  // By UTC day; nothing for a day on which the clocks change.
  std::unordered_map<int64_t, std::optional<int64_t>> offsets_;
};

// "Saturday 14 March 2026".
std::string spelledOut(Day day);

}  // namespace lk
