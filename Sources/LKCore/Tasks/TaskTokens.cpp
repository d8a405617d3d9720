#include "LKCore/Tasks/TaskTokens.h"

#include <unicode/uchar.h>

#include <algorithm>

#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/Text.h"

namespace lk {

namespace {

UChar32 codePoint(char32_t scalar) {
  return static_cast<UChar32>(scalar);
}

// What does not stand for itself: a word goes on over it.
bool isJoinedToTheOneBefore(char32_t scalar) {
  return u_hasBinaryProperty(codePoint(scalar), UCHAR_GRAPHEME_EXTEND) != 0 ||
         u_charType(codePoint(scalar)) == U_FORMAT_CHAR;
}

bool isOfWord(char32_t scalar) {
  constexpr uint32_t kMarks = U_GC_M_MASK | U_GC_ND_MASK | U_GC_PC_MASK;
  return u_isUAlphabetic(codePoint(scalar)) != 0 ||
         (U_GET_GC_MASK(codePoint(scalar)) & kMarks) != 0;
}

bool endsInWord(std::string_view text) {
  while (!text.empty()) {
    const text::Decoded last = text::decodeBefore(text, text.size());
    if (!isJoinedToTheOneBefore(last.scalar)) return isOfWord(last.scalar);
    text.remove_suffix(last.length);
  }
  return false;
}

// The rule of ICU's `\b`, before a character.
bool isWordBoundary(std::string_view text, size_t offset) {
  const char32_t next = text::decode(text, offset).scalar;
  if (isJoinedToTheOneBefore(next)) return false;
  return isOfWord(next) != endsInWord(text.substr(0, offset));
}

// The length of a date's shape at the start of the text; 0 when there is none.
size_t dateLength(std::string_view text) {
  static constexpr std::string_view kShape = "dddd-dd-dd";
  size_t at = 0;
  for (const char expected : kShape) {
    if (at >= text.size()) return 0;
    const text::Decoded next = text::decode(text, at);
    const bool fits = expected == 'd' ? text::isDecimalDigit(next.scalar) : next.scalar == U'-';
    if (!fits) return 0;
    at += next.length;
  }
  return at;
}

size_t wordLength(std::string_view text) {
  size_t at = 0;
  while (at < text.size()) {
    const text::Decoded next = text::decode(text, at);
    if (text::isWhitespaceOrNewline(next.scalar)) break;
    at += next.length;
  }
  return at;
}

size_t valueLength(std::string_view text, TaskToken::Value value) {
  return value == TaskToken::Value::date ? dateLength(text) : wordLength(text);
}

}  // namespace

std::optional<TextRange> findToken(std::string_view line, const TaskToken& token, size_t from) {
  for (size_t at = line.find(token.key, from); at != std::string_view::npos;
       at = line.find(token.key, at + 1)) {
    if (token.atWordStart && !isWordBoundary(line, at)) continue;
    const size_t valueStart = at + token.key.size();
    const size_t length = valueLength(line.substr(valueStart), token.value);
    if (length > 0) return TextRange{at, valueStart + length};
  }
  return std::nullopt;
}

std::vector<TextRange> tokens(std::string_view line, const TaskToken& token) {
  std::vector<TextRange> found;
  for (auto range = findToken(line, token); range; range = findToken(line, token, range->end)) {
    found.push_back(*range);
  }
  return found;
}

std::vector<TextRange> projectTokens(std::string_view line,
                                     const std::vector<std::string>& keywords) {
  std::string keys;
  for (const std::string& keyword : keywords) {
    if (keyword.empty()) continue;
    if (!keys.empty()) keys.push_back('|');
    keys.append(Pattern::escaped(keyword));
  }
  std::vector<TextRange> found;
  if (keys.empty()) return found;
  // Without the value: a key that turns out to end another word costs no second walk over it.
  const Pattern key("(?:" + keys + "):(?=\\S)", Pattern::Case::insensitive);
  for (size_t from = 0; from < line.size();) {
    const auto match = key.find(line, from);
    if (!match) break;
    const TextRange range = *match->front();
    if (isWordBoundary(line, range.start)) {
      found.push_back({range.start, range.end + wordLength(line.substr(range.end))});
      from = found.back().end;
    } else {
      from = range.start + text::decode(line, range.start).length;
    }
  }
  return found;
}

std::string removing(std::string_view line, const std::vector<TextRange>& ranges) {
  std::string result;
  size_t from = 0;
  for (const TextRange range : ranges) {
    result.append(withoutTrailingSpace(line.substr(from, range.start - from)));
    from = range.end;
  }
  return result.append(line.substr(from));
}

std::string_view withoutTrailingSpace(std::string_view line) {
  while (!line.empty()) {
    const text::Decoded last = text::decodeBefore(line, line.size());
    if (!text::isWhitespaceOrNewline(last.scalar)) break;
    line.remove_suffix(last.length);
  }
  return line;
}

std::string_view leadingBlanks(std::string_view line) {
  return line.substr(0, std::min(line.find_first_not_of(" \t"), line.size()));
}

}  // namespace lk
