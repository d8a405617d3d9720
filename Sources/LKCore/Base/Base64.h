#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lk {

// The standard alphabet with padding, without line breaks.
std::string base64Text(std::string_view bytes);

// Reads exactly that form; anything else gives nothing.
std::optional<std::string> base64Bytes(std::string_view text);

}  // namespace lk
