#pragma once

#include <string>
#include <string_view>

namespace lk {

// The leading blanks of each line as tabs: one tab for every four, at least one, the remainder
// dropped. A line is read as it is inside a fence, that is from a line that begins, after blanks
// and tabs, with three backticks up to the next such line. Doing it twice changes nothing more.
//
//     spacesToTabs("a\n     b") == "a\n\tb"
std::string spacesToTabs(std::string_view text);

// Each leading tab as four blanks, under the same rule for fences.
std::string tabsToSpaces(std::string_view text);

}  // namespace lk
