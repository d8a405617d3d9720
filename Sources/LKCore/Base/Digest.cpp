#include "LKCore/Base/Digest.h"

#include <nettle/sha1.h>
#include <nettle/sha2.h>

#include <algorithm>
#include <array>
#include <span>

namespace lk {

namespace {

const uint8_t* raw(std::string_view data) {
  return reinterpret_cast<const uint8_t*>(data.data());
}

std::string hex(std::span<const uint8_t> digest, size_t bytes) {
  static constexpr std::string_view kDigits = "0123456789abcdef";
  std::string result;
  for (const uint8_t byte : digest.first(std::min(bytes, digest.size()))) {
    result.push_back(kDigits[byte >> 4U]);
    result.push_back(kDigits[byte & 0x0FU]);
  }
  return result;
}

}  // namespace

std::string sha256Hex(std::string_view data, size_t bytes) {
  sha256_ctx state;
  sha256_init(&state);
  sha256_update(&state, data.size(), raw(data));
  std::array<uint8_t, SHA256_DIGEST_SIZE> digest{};
  sha256_digest(&state, digest.size(), digest.data());
  return hex(digest, bytes);
}

std::string sha1Hex(std::string_view data, size_t bytes) {
  sha1_ctx state;
  sha1_init(&state);
  sha1_update(&state, data.size(), raw(data));
  std::array<uint8_t, SHA1_DIGEST_SIZE> digest{};
  sha1_digest(&state, digest.size(), digest.data());
  return hex(digest, bytes);
}

}  // namespace lk
