#pragma once

// What is known of a task beyond its line.

#include <cstdint>
#include <optional>
#include <string>

#include "LKCore/Base/Json.h"
#include "LKCore/Base/Time.h"

namespace lk {

struct LKTaskDetail {
  std::optional<Instant> dateCreated;
  std::string text;
  std::optional<Instant> dateCompleted;
  std::optional<Instant> dateDue;
  std::optional<Instant> startDate;
  int32_t priority = 0;
  bool isComplete = false;
  std::string comments;
  bool reminderSet = false;
  int32_t percentComplete = 0;

  // Reads the marking of older notes, a blank and "@done(Mar 5, 2024)", in `text`: the day's first
  // moment in the current time zone becomes `dateCompleted`. Month names are English. Without the
  // marking, or with a day that does not exist, nothing changes.
  void parse();

  bool operator==(const LKTaskDetail&) const = default;
};

// An object with the names of the fields as keys and dates to the second in ISO 8601; a missing
// date has no key.
Json taskDetailJson(const LKTaskDetail& detail);

// The reverse. A missing key leaves its field as in a new record; a value of another type, a date
// that is none and a number beyond 32 bits throw JsonError, which names the key.
LKTaskDetail parseTaskDetail(const Json& object);

}  // namespace lk
