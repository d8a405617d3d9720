#include "LKCore/Base/UUID.h"

#include <sys/random.h>

#include <cerrno>
#include <cstring>

#include "LKCore/Base/Error.h"

namespace lk {

namespace {

bool isHyphenPosition(size_t i) {
  return i == 8 || i == 13 || i == 18 || i == 23;
}

int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

void fillRandomly(uint8_t* bytes, size_t count) {
  for (size_t filled = 0; filled < count;) {
    const ssize_t got = getrandom(bytes + filled, count - filled, 0);
    if (got < 0 && errno != EINTR)
      throw Error("No random numbers: " + std::string(strerror(errno)));
    if (got > 0) filled += static_cast<size_t>(got);
  }
}

// The bits that say "version 4".
void markRandom(std::array<uint8_t, 16>& bytes) {
  bytes[6] = static_cast<uint8_t>((bytes[6] & 0x0FU) | 0x40U);
  bytes[8] = static_cast<uint8_t>((bytes[8] & 0x3FU) | 0x80U);
}

}  // namespace

UUID UUID::random() {
  UUID uuid;
  fillRandomly(uuid.bytes_.data(), uuid.bytes_.size());
  markRandom(uuid.bytes_);
  return uuid;
}

UUID UUIDBatch::next() {
  if (used_ == kCount) {
    std::array<uint8_t, kCount * sizeof(UUID)> random{};
    fillRandomly(random.data(), random.size());
    for (size_t i = 0; i < kCount; ++i) {
      std::memcpy(made_[i].bytes_.data(), random.data() + i * sizeof(UUID), sizeof(UUID));
      markRandom(made_[i].bytes_);
    }
    used_ = 0;
  }
  return made_[used_++];
}

std::optional<UUID> UUID::parse(std::string_view text) {
  if (text.size() != 36) return std::nullopt;
  UUID uuid;
  size_t nibble = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    if (isHyphenPosition(i)) {
      if (text[i] != '-') return std::nullopt;
      continue;
    }
    const int value = hexValue(text[i]);
    if (value < 0) return std::nullopt;
    uint8_t& byte = uuid.bytes_[nibble / 2];
    byte = static_cast<uint8_t>((byte << 4U) | static_cast<uint8_t>(value));
    ++nibble;
  }
  return uuid;
}

UUID UUID::fromBytes(const std::array<uint8_t, 16>& bytes) {
  UUID uuid;
  uuid.bytes_ = bytes;
  return uuid;
}

std::string UUID::text() const {
  return formatted("0123456789ABCDEF");
}
std::string UUID::lowercaseText() const {
  return formatted("0123456789abcdef");
}

std::string UUID::formatted(const char* digits) const {
  std::string result;
  result.reserve(36);
  for (const uint8_t byte : bytes_) {
    if (isHyphenPosition(result.size())) result.push_back('-');
    result.push_back(digits[byte >> 4U]);
    result.push_back(digits[byte & 0x0FU]);
  }
  return result;
}

}  // namespace lk

size_t std::hash<lk::UUID>::operator()(const lk::UUID& uuid) const noexcept {
  size_t result = 0;
  std::memcpy(&result, uuid.bytes_.data(), sizeof result);
  return result;
}
