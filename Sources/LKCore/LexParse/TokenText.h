#pragma once

// The pieces of which tokens' printable forms are made.

#include <string>
#include <string_view>

#include "LKCore/Base/TextRange.h"

namespace lk::lexing {

// "3-7"
std::string describeRange(const TextRange& range);

// In double quotes, on one line: \n, \t, \r, \", \\, and \u{2028} for other invisible scalars.
std::string quoted(std::string_view text);

}  // namespace lk::lexing
