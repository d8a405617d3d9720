#pragma once

#include <optional>
#include <string>

namespace lk {

// What was piped or redirected into the tool, read to its end, without a byte order mark. Nothing
// when standard input is a terminal, is closed, is a device or has no data: then nobody gave any.
// Throws CLIError (general) when it cannot be read or is not UTF-8 text.
std::optional<std::string> pipedInput();

}  // namespace lk
