#include "LKCore/Tasks/LKTaskLiveChange.h"

#include <algorithm>
#include <array>

#include "LKCore/Tasks/LKTaskPriority.h"
#include "LKCore/Tasks/TaskTokens.h"

namespace lk {

namespace {

constexpr std::array<std::string_view, 8> kTaskPrefixes = {"- [ ] ", "- [/] ", "- [x] ", "- [-] ",
                                                           "* [ ] ", "* [/] ", "* [x] ", "* [-] "};
constexpr size_t kStatusCount = 4;

}  // namespace

std::optional<LKTaskDiscreteState> LKTaskDiscreteState::parse(std::string_view line) {
  line.remove_prefix(leadingBlanks(line).size());
  const auto* const prefix = std::ranges::find_if(
      kTaskPrefixes, [&](std::string_view candidate) { return line.starts_with(candidate); });
  if (prefix == kTaskPrefixes.end()) return std::nullopt;
  LKTaskDiscreteState state;
  state.statusRaw =
      static_cast<int>(static_cast<size_t>(prefix - kTaskPrefixes.begin()) % kStatusCount);
  if (const auto due = findToken(line, kDueToken)) {
    state.dueDate = LKDateOnly::parse(due->of(line).substr(kDueToken.key.size()));
  }
  if (const auto priority = findToken(line, kPriorityToken)) {
    state.priority = LKTaskPriority::rawValue(priority->of(line).substr(kPriorityToken.key.size()));
  }
  return state;
}

}  // namespace lk
