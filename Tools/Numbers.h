#pragma once

// Numbers by splitmix64, the same everywhere, and what is drawn with them.

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#include "LKCore/Base/UUID.h"

namespace lk::test {

inline constexpr std::array<std::string_view, 24> kMadeUpWords = {
    "lantern", "harbour", "meadow", "ledger", "kettle", "window",   "river",   "thyme",
    "copper",  "orchard", "letter", "signal", "ribbon", "workshop", "granite", "autumn",
    "piano",   "market",  "bridge", "café",   "Straße", "정원",     "façade",  "żaglówka"};

class Numbers {
 public:
  explicit Numbers(uint64_t state) : state_(state) {}

  uint64_t next() {
    state_ += 0x9E3779B97F4A7C15ULL;
    uint64_t bits = state_;
    bits = (bits ^ (bits >> 30U)) * 0xBF58476D1CE4E5B9ULL;
    bits = (bits ^ (bits >> 27U)) * 0x94D049BB133111EBULL;
    return bits ^ (bits >> 31U);
  }

  size_t below(size_t limit) { return static_cast<size_t>(next() % limit); }

  template <typename List>
  std::string_view oneOf(const List& list) {
    return list[below(list.size())];
  }

  // Mostly the words without accents, as in most notes.
  std::string_view word() { return kMadeUpWords[below(below(8) == 0 ? kMadeUpWords.size() : 19)]; }

  UUID id() {
    const uint64_t high = next();
    const uint64_t low = next();
    std::array<char, 37> text{};
    std::snprintf(text.data(), text.size(), "%08x-%04x-4%03x-8%03x-%012llx",
                  static_cast<unsigned>(high >> 32U), static_cast<unsigned>(high >> 16U & 0xFFFFU),
                  static_cast<unsigned>(high & 0xFFFU), static_cast<unsigned>(low >> 52U),
                  static_cast<unsigned long long>(low & 0xFFFFFFFFFFFFULL));
    return UUID::parse(text.data()).value();
  }

  // 7 to 15 words.
  std::string sentence() {
    std::string text = "The";
    for (size_t left = 6 + below(9); left > 0; --left) text.append(" ").append(word());
    return text.append(".");
  }

 private:
  uint64_t state_;
};

}  // namespace lk::test
