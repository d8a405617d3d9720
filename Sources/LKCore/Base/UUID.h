#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace lk {

// A 128-bit identity. Its canonical text has 36 characters in upper case:
// "6F0C2A9E-41B7-4E55-9A7C-0E1B2C3D4E5F".
class UUID {
 public:
  // The nil UUID, all bits zero.
  UUID() = default;

  // A fresh random UUID (version 4) from the kernel's generator.
  static UUID random();

  // Reads the 36-character form in any case; anything else gives nothing.
  static std::optional<UUID> parse(std::string_view text);

  // The 16 bytes in the order of the text.
  static UUID fromBytes(const std::array<uint8_t, 16>& bytes);
  const std::array<uint8_t, 16>& bytes() const noexcept { return bytes_; }

  std::string text() const;
  std::string lowercaseText() const;

  auto operator<=>(const UUID&) const = default;

 private:
  friend struct std::hash<UUID>;
  friend class UUIDBatch;

  std::string formatted(const char* digits) const;

  std::array<uint8_t, 16> bytes_{};
};

// Fresh random UUIDs for many records: one call to the kernel's generator serves 64 of them, where
// `UUID::random` makes one call each. Not for sharing between threads, nor over a fork.
class UUIDBatch {
 public:
  UUID next();

 private:
  static constexpr size_t kCount = 64;

  std::array<UUID, kCount> made_;
  size_t used_ = kCount;
};

}  // namespace lk

template <>
struct std::hash<lk::UUID> {
  size_t operator()(const lk::UUID& uuid) const noexcept;
};
