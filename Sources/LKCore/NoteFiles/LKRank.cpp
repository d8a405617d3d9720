#include "LKCore/NoteFiles/LKRank.h"

#include <algorithm>
#include <cassert>
#include <cstdint>

#include "LKCore/Base/UUID.h"

namespace lk::LKRank {

namespace {

constexpr std::string_view kAlphabet = "0123456789abcdefghijklmnopqrstuvwxyz";
constexpr size_t kBase = kAlphabet.size();
constexpr size_t kFirstLetter = 10;
constexpr size_t kMiddle = 18;

// A character that is no digit of ranks counts as the nearest one.
size_t digit(char c) {
  const auto below =
      static_cast<size_t>(std::ranges::lower_bound(kAlphabet, c) - kAlphabet.begin());
  return std::min(below, kBase - 1);
}

std::string_view bodyOf(std::string_view rank) {
  return rank.substr(0, rank.find('_'));
}

// The body before the position, and one digit.
std::string replacing(std::string_view body, size_t position, size_t digitValue) {
  return std::string(body.substr(0, position)) + kAlphabet[digitValue];
}

std::string midpointAbove(std::string_view body) {
  for (size_t i = 0; i < body.size(); ++i) {
    const size_t d = digit(body[i]);
    if (d < kBase - 1) return replacing(body, i, (d + kBase) / 2);
  }
  return replacing(body, body.size(), kMiddle);
}

std::string midpointBelow(std::string_view body) {
  for (size_t i = 0; i < body.size(); ++i) {
    const size_t d = digit(body[i]);
    if (d > 0) return replacing(body, i, d / 2);
  }
  return std::string(body);
}

// What goes behind all of a body to stay below that body with `rest` behind it. A digit would come
// before the "_" that ends the body, so it is a letter, unless there is none below the rest.
std::string midpointBehind(std::string_view rest) {
  const size_t d = digit(rest.front());
  if (d > kFirstLetter && d / 2 < kFirstLetter) return replacing(rest, 0, (kFirstLetter + d) / 2);
  return midpointBelow(rest);
}

std::string midpointBetween(std::string_view lo, std::string_view hi) {
  if (lo.empty()) return midpointBelow(hi);
  const size_t shared = static_cast<size_t>(std::ranges::mismatch(lo, hi).in1 - lo.begin());
  const std::string prefix(lo.substr(0, shared));
  assert(shared < hi.size());
  if (shared == lo.size()) return prefix + midpointBehind(hi.substr(shared));
  const size_t a = digit(lo[shared]);
  const size_t b = digit(hi[shared]);
  if (b > a + 1) return replacing(lo, shared, (a + b) / 2);
  return prefix + lo[shared] + midpointAbove(lo.substr(shared + 1));
}

}  // namespace

std::string suffix() {
  return "_" + UUID::random().lowercaseText().substr(0, 4);
}

std::string first() {
  return kAlphabet[kMiddle] + suffix();
}

std::string after(std::string_view rank) {
  return midpointAbove(bodyOf(rank)) + suffix();
}

std::string before(std::string_view rank) {
  assert(canInsertBefore(rank));
  return midpointBelow(bodyOf(rank)) + suffix();
}

std::string between(std::string_view lo, std::string_view hi) {
  assert(canPlaceBetween(lo, hi));
  return midpointBetween(bodyOf(lo), bodyOf(hi)) + suffix();
}

bool canPlaceBetween(std::string_view lo, std::string_view hi) {
  return bodyOf(lo) < bodyOf(hi);
}

bool canInsertBefore(std::string_view rank) {
  return bodyOf(rank).find_first_not_of('0') != std::string_view::npos;
}

std::vector<std::string> spread(size_t count) {
  if (count == 1) return {first()};
  // Bodies of one length, so that none is the beginning of another, at least 36 apart.
  size_t length = 2;
  uint64_t space = uint64_t{kBase} * kBase;
  for (; space / kBase <= count; space *= kBase) ++length;
  std::vector<std::string> ranks;
  ranks.reserve(count);
  for (size_t i = 1; i <= count; ++i) {
    std::string body(length, '0');
    uint64_t value = space / (count + 1) * i;
    for (size_t at = length; at-- > 0; value /= kBase) body[at] = kAlphabet[value % kBase];
    ranks.push_back(body + suffix());
  }
  return ranks;
}

}  // namespace lk::LKRank
