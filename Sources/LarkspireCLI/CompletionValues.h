#pragma once

// The values that a shell offers while a command line is being typed: titles, tags and other names
// of the collection that the line is about. The completion scripts ask for them with a command line
// of their own, which is no part of the command tree:
//
//     lk __complete bash note value 'lk tasks add x --note "Garden p'
//     lk __complete words tag argument tags rename --collection ~/Notes
//
// The first form has the line up to the cursor and prints what may replace the end of it, quoted
// for bash. The second has the words before the one at the cursor and prints every value as it is;
// zsh and fish choose and quote by themselves.

#include <string>
#include <string_view>
#include <vector>

#include "LarkspireCLI/Support/ArgumentList.h"

namespace lk {

// The first word of such a command line.
inline constexpr std::string_view completeWord = "__complete";

// The name of a kind of values that the tool is asked for, as "note" or "tag"; empty for a kind
// that the shell knows by itself.
std::string_view completionName(Completion kind);

// What to print for the words after `completeWord`: lines, none when anything is wrong. A
// collection that the line names with --collection counts, and nothing is ever made or written.
// Never throws.
std::string completionValues(const std::vector<std::string>& words);

}  // namespace lk
