// Typed dates: whatever is typed, the day exists, and blanks and case around it say nothing.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "LarkspireCLI/Support/DateParser.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const lk::Day today{2024, 2, 29};
  const auto day = lk::DateParser::parse(text, today);
  if (!day) return 0;
  require(lk::Day::make(day->year, day->month, day->day) == day);
  require(lk::DateParser::parse(" " + std::string(text) + "\n", today) == day);
  require(lk::DateParser::parse(lk::LKDateOnly::text(*day), today) == day);
  std::string upper(text);
  for (char& c : upper) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  require(lk::DateParser::parse(upper, today) == day);
  return 0;
}
