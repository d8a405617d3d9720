#pragma once

#include <string>
#include <string_view>

// How much a task matters: 0 none, 1 low, 2 medium, 3 high.
//
//     LKTaskPriority::rawValue("High") == 3
//     LKTaskPriority::token(3) == "priority:high"
namespace lk::LKTaskPriority {

// What stands behind `priority:`. A whole decimal integer, with a sign or not and of any length,
// is clamped to 0 to 3; otherwise the word in any case; 0 for anything else.
int rawValue(std::string_view text);

// "priority:low", "priority:medium" or "priority:high"; empty for any other value.
std::string token(int raw);

}  // namespace lk::LKTaskPriority
