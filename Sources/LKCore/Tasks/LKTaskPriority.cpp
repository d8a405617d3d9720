#include "LKCore/Tasks/LKTaskPriority.h"

#include <algorithm>
#include <array>
#include <optional>

#include "LKCore/Base/Text.h"

namespace lk::LKTaskPriority {

namespace {

constexpr int kHighestPriority = 3;
constexpr std::array<std::string_view, 4> kPriorityWords = {"", "low", "medium", "high"};

// The integer clamped to the priorities; nothing when the text is none. By its digits, so that a
// number too large for any integer is still a large number.
std::optional<int> clampedInteger(std::string_view text) {
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+')) text.remove_prefix(1);
  if (text.empty() || text.find_first_not_of("0123456789") != std::string_view::npos) {
    return std::nullopt;
  }
  text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
  if (isNegative || text.empty()) return 0;
  return text.size() > 1 ? kHighestPriority : std::min(text.front() - '0', kHighestPriority);
}

}  // namespace

int rawValue(std::string_view text) {
  if (const auto integer = clampedInteger(text)) return *integer;
  const std::string word = text::lowercased(text);
  for (size_t raw = 1; raw < kPriorityWords.size(); ++raw) {
    if (word == kPriorityWords[raw]) return static_cast<int>(raw);
  }
  return 0;
}

std::string token(int raw) {
  if (raw < 1 || raw > kHighestPriority) return {};
  return "priority:" + std::string(kPriorityWords[static_cast<size_t>(raw)]);
}

}  // namespace lk::LKTaskPriority
