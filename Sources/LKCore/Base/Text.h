#pragma once

// Unicode text as the whole system means it: valid UTF-8 in std::string and std::string_view.
//
// Bytes are checked once, with `isValidUTF8`, where they enter. Every other function here takes
// valid UTF-8; on anything else it stays in bounds and treats a bad byte as U+FFFD.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace lk::text {

// --- Scalars ---------------------------------------------------------------------------------

struct Decoded {
  char32_t scalar = 0;
  size_t length = 0;  // UTF-8 bytes, 1 to 4

  bool operator==(const Decoded&) const = default;
};

bool isValidUTF8(std::string_view bytes);

Decoded decodeBeyondASCII(std::string_view text, size_t offset);

// The scalar that begins at byte `offset`, which must be below the text's size.
inline Decoded decode(std::string_view text, size_t offset) {
  const auto byte = static_cast<unsigned char>(text[offset]);
  return byte < 0x80 ? Decoded{byte, 1} : decodeBeyondASCII(text, offset);
}

// The scalar that ends just before byte `offset`, which must be above 0.
Decoded decodeBefore(std::string_view text, size_t offset);

void append(std::string& text, char32_t scalar);

size_t scalarCount(std::string_view text);
size_t utf16Count(std::string_view text);

// The byte offsets at which the user-perceived characters (extended grapheme clusters) of `text`
// end, ascending; the last one is the text's size. Empty for the empty text.
std::vector<size_t> characterEnds(std::string_view text);

// --- Character sets ----------------------------------------------------------------------------

// U+000A to U+000D, U+0085, U+2028 and U+2029.
bool isNewline(char32_t scalar);
bool isBlankBeyondASCII(char32_t scalar);
// Tab and the general category Zs: no line ends.
inline bool isBlank(char32_t scalar) {
  return scalar < 0x80 ? scalar == ' ' || scalar == '\t' : isBlankBeyondASCII(scalar);
}
// Either of the two.
bool isWhitespaceOrNewline(char32_t scalar);
bool isLetter(char32_t scalar);        // general categories L* and M*
bool isMark(char32_t scalar);          // M*
bool isDecimalDigit(char32_t scalar);  // Nd
bool isPunctuation(char32_t scalar);   // P*

// --- Trimming and splitting --------------------------------------------------------------------

std::string_view trimmed(std::string_view text);            // isWhitespaceOrNewline, both ends
std::string_view trimmedBlanks(std::string_view text);      // isBlank, both ends
std::string_view trimmedLeading(std::string_view text);     // isWhitespaceOrNewline, at the start
std::string_view trimmedSpacesTabs(std::string_view text);  // U+0020 and U+0009 only, both ends

// The pieces between separators; always at least one, and empty ones stay.
std::vector<std::string_view> split(std::string_view text, char separator);

// The pieces between newline scalars, each one a separator, so that CR LF gives an empty line.
std::vector<std::string_view> splitLines(std::string_view text);

// A whole decimal integer with an optional sign; nothing else. False leaves `value` alone.
bool parseInteger(std::string_view text, int& value);
bool parseInteger(std::string_view text, int64_t& value);

// A whole decimal number, with a sign and an exponent if need be; no infinity. False leaves `value`
// alone.
bool parseNumber(std::string_view text, double& value);

std::string replacingAll(std::string_view text, std::string_view from, std::string_view to);

// The bytes with every one that is not part of valid UTF-8 written as "\\xE9": for messages.
std::string escapedInvalid(std::string_view bytes);

// --- Case, equality and order ------------------------------------------------------------------

std::string lowercased(std::string_view text);  // full Unicode mapping, no locale
std::string uppercased(std::string_view text);
std::string composed(std::string_view text);    // NFC
std::string decomposed(std::string_view text);  // NFD

// Canonical equivalence: "é" equals "e" with a combining acute.
bool equal(std::string_view a, std::string_view b);
// Canonical equivalence of the lower-cased texts.
bool equalIgnoringCase(std::string_view a, std::string_view b);
// A text that is byte-equal for two texts exactly when equalIgnoringCase holds; for maps.
std::string caseInsensitiveKey(std::string_view text);
// True when lower-cased `text` contains lower-cased `part`.
bool containsIgnoringCase(std::string_view text, std::string_view part);

// The text without what a careless search overlooks: decomposed, without the marks U+0300 to U+036F,
// lower-cased.
std::string folded(std::string_view text);

// The order of lists for people: by the user's language, digits by their value ("9" before
// "10"), accents and then case only to break ties. Negative, zero or positive.
int compareLocalized(std::string_view a, std::string_view b);
// Bytes of that order: for texts that are compared many times.
std::string localizedKey(std::string_view text);

// --- Suggestions ---------------------------------------------------------------------------------

// The Levenshtein distance in Unicode scalars.
size_t editDistance(std::string_view a, std::string_view b);

}  // namespace lk::text
