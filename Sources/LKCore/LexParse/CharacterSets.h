#pragma once

// The sets of characters that both lexers, tags and words for projects are defined by, and the
// table over the 256 byte values that lets the lexers pass plain text at a stride.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "LKCore/Base/Text.h"

namespace lk::lexing {

// The ten characters that may begin an inline mark.
constexpr std::string_view kDelimiters = "`~*:[#(!=@";

// The characters that begin or end what hides style marks: images, links, code, URLs.
constexpr std::string_view kHiding = "`()[]!";

// The characters that may begin a mark of the line's start.
constexpr std::string_view kLineStart = "`>-*#|123456789";

// What a byte of UTF-8 may mean. The lead bytes C2 and E2 stand for U+0085, U+2028 and U+2029,
// and need a look at what follows.
enum ByteTrait : uint8_t {
  kDelimiterByte = 1,
  kLineEndByte = 2,    // ends a line, or is a lead byte that may
  kTextStopByte = 4,   // plain text may end here: the two above and "<"
  kTagByte = 8,        // ASCII letters, digits, "-" and "/"
  kTaskStopByte = 16,  // as kTextStopByte on a task line, where the space before a word counts too
  kHidingByte = 32,
  kLineStartByte = 64,
};

namespace detail {
constexpr std::array<uint8_t, 256> byteTraits() {
  std::array<uint8_t, 256> traits{};
  const auto add = [&](unsigned char byte, int trait) {
    traits[byte] = static_cast<uint8_t>(traits[byte] | trait);
  };
  for (const char c : kDelimiters) add(static_cast<unsigned char>(c), kDelimiterByte);
  for (const unsigned c : {0x0AU, 0x0BU, 0x0CU, 0x0DU, 0xC2U, 0xE2U}) {
    add(static_cast<unsigned char>(c), kLineEndByte);
  }
  // Before the sets that say nothing about where plain text ends.
  for (unsigned c = 0; c < 256; ++c) {
    const bool stops = traits[c] != 0 || c == '<';
    if (stops) add(static_cast<unsigned char>(c), kTextStopByte);
    if (stops || c == ' ') add(static_cast<unsigned char>(c), kTaskStopByte);
    const bool tagged = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') ||
                        (c >= 'A' && c <= 'Z') || c == '-' || c == '/';
    if (tagged) add(static_cast<unsigned char>(c), kTagByte);
  }
  for (const char c : kHiding) add(static_cast<unsigned char>(c), kHidingByte);
  for (const char c : kLineStart) add(static_cast<unsigned char>(c), kLineStartByte);
  return traits;
}
}  // namespace detail

constexpr std::array<uint8_t, 256> kByteTraits = detail::byteTraits();

inline uint8_t traitsOf(char byte) {
  return kByteTraits[static_cast<unsigned char>(byte)];
}

inline bool hasTrait(char byte, ByteTrait trait) {
  return (traitsOf(byte) & trait) != 0;
}

// The offset of the first byte at or after `from` that has the trait, or the text's size. Most
// stretches are longer than the four bytes of a stride.
inline size_t skipTo(std::string_view text, size_t from, ByteTrait trait) {
  size_t at = from;
  for (; at + 4 <= text.size(); at += 4) {
    const int seen = traitsOf(text[at]) | traitsOf(text[at + 1]) | traitsOf(text[at + 2]) |
                     traitsOf(text[at + 3]);
    if ((seen & trait) != 0) break;
  }
  while (at < text.size() && !hasTrait(text[at], trait)) ++at;
  return at;
}

// True for the ten delimiters; every one is a single byte.
inline bool isDelimiter(char byte) {
  return hasTrait(byte, kDelimiterByte);
}

// The length in bytes of the line end (text::isNewline) at byte `at`; 0 where there is none, and
// at the end of the text. CR LF is two line ends.
inline size_t terminatorLength(std::string_view text, size_t at) {
  if (at >= text.size() || !hasTrait(text[at], kLineEndByte)) return 0;
  const std::string_view rest = text.substr(at);
  if (rest[0] == '\xC2') return rest.starts_with("\xC2\x85") ? 2 : 0;
  if (rest[0] != '\xE2') return 1;
  return rest.starts_with("\xE2\x80\xA8") || rest.starts_with("\xE2\x80\xA9") ? 3 : 0;
}

// The byte offset of the first line end at or after `from`, or the text's size.
inline size_t lineEnd(std::string_view text, size_t from) {
  size_t at = skipTo(text, from, kLineEndByte);
  while (at < text.size() && terminatorLength(text, at) == 0) {
    at = skipTo(text, at + 1, kLineEndByte);
  }
  return at;
}

// Letters and marks, decimal digits, "-" and "/".
inline bool isTagCharacter(char32_t scalar) {
  if (scalar < 0x80) return hasTrait(static_cast<char>(scalar), kTagByte);
  return text::isLetter(scalar) || text::isDecimalDigit(scalar);
}

// The result of counting leading blanks: none is level 0; spaces alone make a level for each four
// begun; tabs alone one each; a mix the tabs and a level for each four full spaces, at least one.
// Never above 22.
int indentLevel(size_t tabs, size_t spaces);

}  // namespace lk::lexing
