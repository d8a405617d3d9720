#pragma once

// The sets of characters that both lexers, tags and words for projects are defined by, and the
// table over the 256 byte values that lets the lexers pass plain text at a stride.

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "LKCore/Base/Text.h"

namespace lk::lexing {

// The ten characters that may begin an inline mark.
constexpr std::string_view kDelimiters = "`~*:[#(!=@";

// The characters that begin or end what hides style marks: images, links, code, URLs.
constexpr std::string_view kHiding = "`()[]!";

// The characters that begin a tag, a link or checkbox, a URL behind its text, a date, a fence.
constexpr std::string_view kUse = "#[]@`";

// The characters that may begin a mark of the line's start.
constexpr std::string_view kLineStart = "`>-*#|123456789";

// What a byte of UTF-8 may mean. The lead bytes C2 and E2 stand for U+0085, U+2028 and U+2029,
// and need a look at what follows.
enum ByteTrait : uint16_t {
  kDelimiterByte = 1,
  kLineEndByte = 2,    // ends a line, or is a lead byte that may
  kTextStopByte = 4,   // plain text may end here: the two above and "<"
  kTagByte = 8,        // ASCII letters, digits, "-" and "/"
  kTaskStopByte = 16,  // as kTextStopByte on a task line, where the space before a word counts too
  kHidingByte = 32,
  kLineStartByte = 64,
  kUseByte = 128,     // begins what is extracted from a note: a tag, date, link, task or fence
  kNoNameByte = 256,  // ASCII that no tag and no date begins with
};

namespace detail {
constexpr std::array<uint16_t, 256> byteTraits() {
  std::array<uint16_t, 256> traits{};
  const auto add = [&](unsigned char byte, int trait) {
    traits[byte] = static_cast<uint16_t>(traits[byte] | trait);
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
  for (const char c : kUse) add(static_cast<unsigned char>(c), kUseByte);
  for (unsigned c = 0; c < 0x80; ++c) {
    const bool names = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    if (!names) add(static_cast<unsigned char>(c), kNoNameByte);
  }
  for (const char c : kHiding) add(static_cast<unsigned char>(c), kHidingByte);
  for (const char c : kLineStart) add(static_cast<unsigned char>(c), kLineStartByte);
  return traits;
}
}  // namespace detail

constexpr std::array<uint16_t, 256> kByteTraits = detail::byteTraits();

inline uint16_t traitsOf(char byte) {
  return kByteTraits[static_cast<unsigned char>(byte)];
}

inline bool hasTrait(char byte, ByteTrait trait) {
  return (traitsOf(byte) & trait) != 0;
}

// Sixteen bytes side by side, compared with one instruction each on every machine that can.
using ByteBlock = unsigned char __attribute__((vector_size(16)));

// The first of the block's bytes for which the comparison held, or 16.
inline size_t firstHit(ByteBlock hits) {
  std::array<uint64_t, 2> halves{};
  std::memcpy(halves.data(), &hits, sizeof hits);
  const auto first = [](uint64_t half) {
    const int zeros = std::endian::native == std::endian::little ? std::countr_zero(half)
                                                                 : std::countl_zero(half);
    return static_cast<size_t>(zeros) / 8;
  };
  return halves[0] != 0 ? first(halves[0]) : 8 + first(halves[1]);
}

// The offset of the first byte at or after `from` that has the trait, or the text's size. `mayHit`
// compares a block and holds for every byte that has the trait, and for few others.
template <typename MayHit>
size_t skipTo(std::string_view text, size_t from, ByteTrait trait, MayHit mayHit) {
  size_t at = from;
  while (at + sizeof(ByteBlock) <= text.size()) {
    ByteBlock block;
    std::memcpy(&block, text.data() + at, sizeof block);
    const size_t hit = firstHit(mayHit(block));
    at += hit;
    if (hit == sizeof block) continue;
    if (hasTrait(text[at], trait)) return at;
    ++at;
  }
  while (at < text.size() && !hasTrait(text[at], trait)) ++at;
  return at;
}

// 0A to 0D, and the lead bytes C2 and E2, which differ in one bit.
constexpr auto mayEndLine = [](ByteBlock block) {
  return static_cast<ByteBlock>((block - 0x0A) <= 3) |
         static_cast<ByteBlock>((block | 0x20) == 0xE2);
};

// The above, the ten delimiters, "<" and three that stand beside them: two characters that differ
// in one bit take one comparison.
constexpr auto mayEndText = [](ByteBlock block) {
  const ByteBlock folded = block | 0x20;  // brings "@[" to "`{"
  const ByteBlock paired = block & 0xFD;  // brings "#*" to "!("
  return mayEndLine(block) | static_cast<ByteBlock>(paired == '!') |
         static_cast<ByteBlock>(paired == '(') |
         static_cast<ByteBlock>((block - ':') <= '=' - ':') |
         static_cast<ByteBlock>(folded == '`') | static_cast<ByteBlock>(folded == '{') |
         static_cast<ByteBlock>(folded == '~');
};

inline size_t skipToLineEnd(std::string_view text, size_t from) {
  return skipTo(text, from, kLineEndByte, mayEndLine);
}

inline size_t skipToTextStop(std::string_view text, size_t from) {
  return skipTo(text, from, kTextStopByte, mayEndText);
}

inline size_t skipToTaskStop(std::string_view text, size_t from) {
  return skipTo(text, from, kTaskStopByte, [](ByteBlock block) {
    return mayEndText(block) | static_cast<ByteBlock>(block == ' ');
  });
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
  size_t at = skipToLineEnd(text, from);
  while (at < text.size() && terminatorLength(text, at) == 0) at = skipToLineEnd(text, at + 1);
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
