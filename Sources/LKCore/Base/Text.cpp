#include "LKCore/Base/Text.h"

#include <unicode/brkiter.h>
#include <unicode/coll.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/ustring.h>
#include <unicode/utext.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <numeric>

namespace lk::text {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool isContinuation(unsigned char byte) {
  return (byte & 0xC0U) == 0x80U;
}

// The first byte at or after `from` that is not ASCII, or the text's size.
size_t asciiEnd(std::string_view text, size_t from) {
  size_t i = from;
  for (; i + 16 <= text.size(); i += 16) {
    std::array<uint64_t, 2> words{};
    std::memcpy(words.data(), text.data() + i, 16);
    if (((words[0] | words[1]) & 0x8080808080808080ULL) != 0) break;
  }
  while (i < text.size() && static_cast<unsigned char>(text[i]) < 0x80) ++i;
  return i;
}

bool isASCII(std::string_view text) {
  return asciiEnd(text, 0) == text.size();
}

// A well-formed sequence at `offset`, or length 0.
Decoded decodeStrictly(std::string_view text, size_t offset) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[offset + i]); };
  const size_t left = text.size() - offset;
  const unsigned char lead = byte(0);
  if (lead < 0x80) return {lead, 1};
  if (lead < 0xC2 || lead > 0xF4) return {};
  const size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  if (left < length) return {};
  char32_t scalar = length == 2 ? lead & 0x1FU : length == 3 ? lead & 0x0FU : lead & 0x07U;
  for (size_t i = 1; i < length; ++i) {
    if (!isContinuation(byte(i))) return {};
    scalar = (scalar << 6U) | (byte(i) & 0x3FU);
  }
  const bool overlong = (length == 3 && scalar < 0x800) || (length == 4 && scalar < 0x10000);
  const bool surrogate = scalar >= 0xD800 && scalar <= 0xDFFF;
  if (overlong || surrogate || scalar > 0x10FFFF) return {};
  return {scalar, length};
}

template <typename Test>
std::string_view trimStart(std::string_view text, Test test) {
  size_t i = 0;
  while (i < text.size()) {
    const Decoded d = decode(text, i);
    if (!test(d.scalar)) break;
    i += d.length;
  }
  return text.substr(i);
}

template <typename Test>
std::string_view trimEnd(std::string_view text, Test test) {
  size_t end = text.size();
  while (end > 0) {
    const Decoded d = decodeBefore(text, end);
    if (!test(d.scalar)) break;
    end -= d.length;
  }
  return text.substr(0, end);
}

template <typename Number>
bool parseWhole(std::string_view text, Number& value) {
  if (text.starts_with('+') && text.size() > 1 && text[1] != '-') text.remove_prefix(1);
  Number parsed = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), parsed);
  if (error != std::errc() || end != text.data() + text.size()) return false;
  value = parsed;
  return true;
}

bool isSpaceOrTab(char32_t scalar) {
  return scalar == ' ' || scalar == '\t';
}

icu::UnicodeString toUnicodeString(std::string_view text) {
  return icu::UnicodeString::fromUTF8(
      icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
}

std::string toUTF8(const icu::UnicodeString& text) {
  std::string result;
  text.toUTF8String(result);
  return result;
}

std::string normalized(std::string_view text, const icu::Normalizer2* (*form)(UErrorCode& status)) {
  if (isASCII(text)) return std::string(text);
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* const normalizer = form(status);
  if (U_FAILURE(status)) return std::string(text);
  const icu::StringPiece piece(text.data(), static_cast<int32_t>(text.size()));
  if (normalizer->isNormalizedUTF8(piece, status)) return std::string(text);
  const icu::UnicodeString result = normalizer->normalize(toUnicodeString(text), status);
  return U_FAILURE(status) ? std::string(text) : toUTF8(result);
}

std::string asciiMapped(std::string_view text, char first, char last, int shift) {
  std::string result(text);
  for (char& c : result) {
    if (c >= first && c <= last) c = static_cast<char>(c + shift);
  }
  return result;
}

const icu::Collator& listCollator() {
  static const std::unique_ptr<icu::Collator> collator = [] {
    UErrorCode status = U_ZERO_ERROR;
    // Without a language (LC_ALL=C), ICU would put every capital before every small letter.
    const icu::Locale user = icu::Locale::getDefault();
    const bool hasLanguage = std::string_view(user.getVariant()) != "POSIX";
    std::unique_ptr<icu::Collator> made(
        icu::Collator::createInstance(hasLanguage ? user : icu::Locale::getRoot(), status));
    if (U_FAILURE(status) || !made) {
      status = U_ZERO_ERROR;
      made.reset(icu::Collator::createInstance(icu::Locale::getRoot(), status));
    }
    made->setAttribute(UCOL_NUMERIC_COLLATION, UCOL_ON, status);
    made->setStrength(icu::Collator::TERTIARY);
    return made;
  }();
  return *collator;
}

}  // namespace

bool isValidUTF8(std::string_view bytes) {
  size_t i = 0;
  while (i < bytes.size()) {
    if (static_cast<unsigned char>(bytes[i]) < 0x80) {
      i = asciiEnd(bytes, i);
      continue;
    }
    const Decoded d = decodeStrictly(bytes, i);
    if (d.length == 0) return false;
    i += d.length;
  }
  return true;
}

Decoded decodeBeyondASCII(std::string_view text, size_t offset) {
  const Decoded d = decodeStrictly(text, offset);
  return d.length == 0 ? Decoded{kReplacement, 1} : d;
}

Decoded decodeBefore(std::string_view text, size_t offset) {
  size_t start = offset - 1;
  while (start > 0 && offset - start < 4 &&
         isContinuation(static_cast<unsigned char>(text[start]))) {
    --start;
  }
  const Decoded d = decodeStrictly(text.substr(0, offset), start);
  return d.length == offset - start ? d : Decoded{kReplacement, 1};
}

void append(std::string& text, char32_t scalar) {
  const auto put = [&](char32_t bits) { text.push_back(static_cast<char>(bits)); };
  if (scalar < 0x80) {
    put(scalar);
  } else if (scalar < 0x800) {
    put(0xC0U | (scalar >> 6U));
    put(0x80U | (scalar & 0x3FU));
  } else if (scalar < 0x10000) {
    put(0xE0U | (scalar >> 12U));
    put(0x80U | ((scalar >> 6U) & 0x3FU));
    put(0x80U | (scalar & 0x3FU));
  } else {
    put(0xF0U | (scalar >> 18U));
    put(0x80U | ((scalar >> 12U) & 0x3FU));
    put(0x80U | ((scalar >> 6U) & 0x3FU));
    put(0x80U | (scalar & 0x3FU));
  }
}

size_t scalarCount(std::string_view text) {
  return static_cast<size_t>(std::ranges::count_if(
      text, [](char c) { return !isContinuation(static_cast<unsigned char>(c)); }));
}

size_t utf16Count(std::string_view text) {
  return std::accumulate(text.begin(), text.end(), size_t{0}, [](size_t sum, char c) {
    const auto byte = static_cast<unsigned char>(c);
    return sum + (isContinuation(byte) ? 0U : 1U) + (byte >= 0xF0 ? 1U : 0U);
  });
}

std::vector<size_t> characterEnds(std::string_view text) {
  std::vector<size_t> ends;
  if (text.empty()) return ends;
  // In ASCII, CR LF is the one character of two scalars.
  if (isASCII(text) && text.find('\r') == std::string_view::npos) {
    ends.resize(text.size());
    std::iota(ends.begin(), ends.end(), size_t{1});
    return ends;
  }
  UErrorCode status = U_ZERO_ERROR;
  static const std::unique_ptr<icu::BreakIterator> prototype(
      icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
  if (!prototype) {
    for (size_t i = 0; i < text.size();) ends.push_back(i += decode(text, i).length);
    return ends;
  }
  const std::unique_ptr<icu::BreakIterator> iterator(prototype->clone());
  UText utext = UTEXT_INITIALIZER;
  utext_openUTF8(&utext, text.data(), static_cast<int64_t>(text.size()), &status);
  iterator->setText(&utext, status);
  iterator->first();
  for (int32_t end = iterator->next(); end != icu::BreakIterator::DONE; end = iterator->next()) {
    ends.push_back(static_cast<size_t>(end));
  }
  utext_close(&utext);
  return ends;
}

bool isNewline(char32_t scalar) {
  return (scalar >= 0x0A && scalar <= 0x0D) || scalar == 0x85 || scalar == 0x2028 ||
         scalar == 0x2029;
}

bool isBlankBeyondASCII(char32_t scalar) {
  return u_charType(static_cast<UChar32>(scalar)) == U_SPACE_SEPARATOR;
}

bool isWhitespaceOrNewline(char32_t scalar) {
  return isBlank(scalar) || isNewline(scalar);
}

bool isLetter(char32_t scalar) {
  return (U_GET_GC_MASK(static_cast<UChar32>(scalar)) & (U_GC_L_MASK | U_GC_M_MASK)) != 0;
}

bool isMark(char32_t scalar) {
  return (U_GET_GC_MASK(static_cast<UChar32>(scalar)) & U_GC_M_MASK) != 0;
}

bool isDecimalDigit(char32_t scalar) {
  return u_isdigit(static_cast<UChar32>(scalar)) != 0;
}

bool isPunctuation(char32_t scalar) {
  return u_ispunct(static_cast<UChar32>(scalar)) != 0;
}

std::string_view trimmed(std::string_view text) {
  return trimEnd(trimStart(text, isWhitespaceOrNewline), isWhitespaceOrNewline);
}

std::string_view trimmedBlanks(std::string_view text) {
  return trimEnd(trimStart(text, isBlank), isBlank);
}

std::string_view trimmedLeading(std::string_view text) {
  return trimStart(text, isWhitespaceOrNewline);
}

std::string_view trimmedSpacesTabs(std::string_view text) {
  return trimEnd(trimStart(text, isSpaceOrTab), isSpaceOrTab);
}

std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  size_t start = 0;
  for (size_t at = text.find(separator); at != std::string_view::npos;
       at = text.find(separator, start)) {
    pieces.push_back(text.substr(start, at - start));
    start = at + 1;
  }
  pieces.push_back(text.substr(start));
  return pieces;
}

std::vector<std::string_view> splitLines(std::string_view text) {
  std::vector<std::string_view> lines;
  size_t start = 0;
  for (size_t i = 0; i < text.size();) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte > 0x0D && byte < 0x80) {
      ++i;
      continue;
    }
    const Decoded d = decode(text, i);
    i += d.length;
    if (isNewline(d.scalar)) {
      lines.push_back(text.substr(start, i - d.length - start));
      start = i;
    }
  }
  lines.push_back(text.substr(start));
  return lines;
}

bool parseInteger(std::string_view text, int& value) {
  return parseWhole(text, value);
}

bool parseInteger(std::string_view text, int64_t& value) {
  return parseWhole(text, value);
}

bool parseNumber(std::string_view text, double& value) {
  double number = 0;
  if (!parseWhole(text, number) || !std::isfinite(number)) return false;
  value = number;
  return true;
}

std::string replacingAll(std::string_view text, std::string_view from, std::string_view to) {
  std::string result;
  size_t start = 0;
  for (size_t at = text.find(from); at != std::string_view::npos; at = text.find(from, start)) {
    result.append(text.substr(start, at - start)).append(to);
    start = at + from.size();
  }
  return result.append(text.substr(start));
}

std::string escapedInvalid(std::string_view bytes) {
  static constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string result;
  for (size_t i = 0; i < bytes.size();) {
    const Decoded d = decodeStrictly(bytes, i);
    if (d.length > 0) {
      result.append(bytes.substr(i, d.length));
      i += d.length;
      continue;
    }
    const auto byte = static_cast<unsigned char>(bytes[i++]);
    result.append("\\x");
    result.push_back(kDigits[byte >> 4U]);
    result.push_back(kDigits[byte & 0x0FU]);
  }
  return result;
}

std::string lowercased(std::string_view text) {
  if (isASCII(text)) return asciiMapped(text, 'A', 'Z', 'a' - 'A');
  return toUTF8(toUnicodeString(text).toLower(icu::Locale::getRoot()));
}

std::string uppercased(std::string_view text) {
  if (isASCII(text)) return asciiMapped(text, 'a', 'z', 'A' - 'a');
  return toUTF8(toUnicodeString(text).toUpper(icu::Locale::getRoot()));
}

std::string composed(std::string_view text) {
  return normalized(text, icu::Normalizer2::getNFCInstance);
}

std::string decomposed(std::string_view text) {
  return normalized(text, icu::Normalizer2::getNFDInstance);
}

bool equal(std::string_view a, std::string_view b) {
  if (a == b) return true;
  if (isASCII(a) && isASCII(b)) return false;
  return composed(a) == composed(b);
}

bool equalIgnoringCase(std::string_view a, std::string_view b) {
  return a == b || caseInsensitiveKey(a) == caseInsensitiveKey(b);
}

std::string caseInsensitiveKey(std::string_view text) {
  std::string lower = lowercased(text);
  return isASCII(lower) ? lower : composed(lower);
}

bool containsIgnoringCase(std::string_view text, std::string_view part) {
  return caseInsensitiveKey(text).find(caseInsensitiveKey(part)) != std::string::npos;
}

std::string folded(std::string_view text) {
  if (isASCII(text)) return asciiMapped(text, 'A', 'Z', 'a' - 'A');
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* nfd = icu::Normalizer2::getNFDInstance(status);
  const icu::UnicodeString decomposed = nfd->normalize(toUnicodeString(text), status);
  if (U_FAILURE(status)) return lowercased(text);
  icu::UnicodeString bare;
  for (int32_t i = 0; i < decomposed.length(); ++i) {
    const char16_t unit = decomposed[i];
    if (unit < 0x300 || unit > 0x36F) bare.append(unit);
  }
  return toUTF8(bare.toLower(icu::Locale::getRoot()));
}

int compareLocalized(std::string_view a, std::string_view b) {
  UErrorCode status = U_ZERO_ERROR;
  const UCollationResult order = listCollator().compareUTF8(
      icu::StringPiece(a.data(), static_cast<int32_t>(a.size())),
      icu::StringPiece(b.data(), static_cast<int32_t>(b.size())), status);
  return U_FAILURE(status) ? a.compare(b) : order;
}

std::string localizedKey(std::string_view text) {
  const icu::UnicodeString units = icu::UnicodeString::fromUTF8(
      icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
  std::string key(text.size() * 2 + 16, '\0');
  const auto fill = [&] {
    return listCollator().getSortKey(units, reinterpret_cast<uint8_t*>(key.data()),
                                     static_cast<int32_t>(key.size()));
  };
  const auto size = static_cast<size_t>(fill());
  const bool fits = size <= key.size();
  key.resize(size);
  if (!fits) fill();
  return key;
}

size_t editDistance(std::string_view a, std::string_view b) {
  const auto scalars = [](std::string_view text) {
    std::vector<char32_t> result;
    for (size_t i = 0; i < text.size();) {
      const Decoded d = decode(text, i);
      result.push_back(d.scalar);
      i += d.length;
    }
    return result;
  };
  const std::vector<char32_t> left = scalars(a);
  const std::vector<char32_t> right = scalars(b);
  std::vector<size_t> row(right.size() + 1);
  std::iota(row.begin(), row.end(), size_t{0});
  for (size_t i = 0; i < left.size(); ++i) {
    size_t diagonal = row[0];
    row[0] = i + 1;
    for (size_t j = 0; j < right.size(); ++j) {
      const size_t replaced = diagonal + (left[i] == right[j] ? 0U : 1U);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

}  // namespace lk::text
