#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace lk {

// Digests as lower-case hex of their first `bytes` bytes (SHA-256 has 32, SHA-1 has 20).
std::string sha256Hex(std::string_view data, size_t bytes);
std::string sha1Hex(std::string_view data, size_t bytes);

}  // namespace lk
