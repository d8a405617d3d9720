#include "LKCore/LexParse/CloserSearch.h"

#include <limits>

#include "LKCore/Base/LinkDetector.h"
#include "LKCore/Base/Text.h"
#include "LKCore/LexParse/CharacterSets.h"

namespace lk {

namespace {

constexpr size_t kNowhere = std::numeric_limits<size_t>::max();
constexpr uint32_t kNone = std::numeric_limits<uint32_t>::max();

// The constructs that hide marks, for a sweep over a line from its end backward: where a walk
// that comes to one goes on behind it.
class HidingConstructs {
 public:
  HidingConstructs(std::string_view text, size_t lineEnd) : line_(text.substr(0, lineEnd)) {}

  // Takes in the byte at `at`, which falls by one from call to call. The place behind the
  // construct that opens there, or the next byte when none does.
  size_t placeAfter(size_t at) {
    const char c = line_[at];
    const char next = at + 1 < line_.size() ? line_[at + 1] : '\0';
    size_t target = kNowhere;
    switch (c) {
      case '`':
        if (backtick_ != kNowhere) target = backtick_ + 1;
        backtick_ = at;
        break;
      case ')':
        closeRound_ = at;
        break;
      case ']':
        if (next == ']') afterBackLink_ = at + 2;
        if (next == '(') afterLink_ = closeRound_ == kNowhere ? kNowhere : closeRound_ + 1;
        break;
      case '[':
        target = next == '[' ? afterBackLink_ : afterLink_;
        break;
      case '!':
        if (next == '[') target = afterLink_;
        break;
      case '(':
        // Only the innermost pair can enclose nothing but a URL: none holds an open "(".
        if (closeRound_ < openRound_ && closeRound_ != kNowhere &&
            isValidURL(line_.substr(at + 1, closeRound_ - at - 1))) {
          target = closeRound_ + 1;
        }
        openRound_ = at;
        break;
      default:
        break;
    }
    return target == kNowhere ? at + 1 : target;
  }

 private:
  // Each the nearest one behind the current place.
  std::string_view line_;
  size_t backtick_ = kNowhere;
  size_t openRound_ = kNowhere;
  size_t closeRound_ = kNowhere;
  size_t afterBackLink_ = kNowhere;  // behind "]]"
  size_t afterLink_ = kNowhere;      // behind the ")" that follows "]("
};

bool isSpace(char32_t scalar) {
  return text::isWhitespaceOrNewline(scalar);
}

}  // namespace

char styleScalar(TextStyle style) {
  switch (style) {
    case TextStyle::bold:
    case TextStyle::italic:
      return '*';
    case TextStyle::strikethrough:
      return '~';
    case TextStyle::highlight:
      return '=';
    case TextStyle::legacyHighlight:
      return ':';
    case TextStyle::inlineCode:
      break;
  }
  return '`';
}

Flanks flanksOf(std::string_view text, size_t at) {
  Flanks run{at, at + 1, false, false};
  while (run.start > 0 && lexing::isDelimiter(text[run.start - 1])) --run.start;
  while (run.end < text.size() && lexing::isDelimiter(text[run.end])) ++run.end;
  // The start of the text flanks like the start of any line.
  const char32_t left = run.start == 0 ? U'\n' : text::decodeBefore(text, run.start).scalar;
  run.validRight = !isSpace(left);
  if (run.end == text.size()) return run;
  const char32_t right = text::decode(text, run.end).scalar;
  // No delimiter stands here, so "*", which does not count as punctuation, cannot be met.
  run.validLeft = !isSpace(right) &&
                  (!text::isPunctuation(right) || text::isPunctuation(left) || isSpace(left));
  return run;
}

const Flanks& CloserSearch::flanks(size_t at) {
  if (at < run_.start || at >= run_.end) run_ = flanksOf(text_, at);
  return run_;
}

bool CloserSearch::finds(TextStyle style, size_t from, size_t lineEnd) {
  // The table counts in 32 bits; no line worth styling is that long.
  if (from >= lineEnd || lineEnd - from >= kNone) return false;
  // Mostly nothing stands between an opener and its closer, and no table is needed to say so.
  const char scalar = styleScalar(style);
  size_t first = from;
  while (first < lineEnd && text_[first] != scalar &&
         !lexing::hasTrait(text_[first], lexing::kHidingByte)) {
    ++first;
  }
  if (first == lineEnd) return false;
  const bool isDouble = first + 1 < lineEnd && text_[first + 1] == scalar;
  if (text_[first] == scalar && isDouble != (style == TextStyle::italic) &&
      flanks(first).validRight) {
    return true;
  }
  Table& table = tables_[static_cast<size_t>(style)];
  if (table.lineEnd != lineEnd) build(table, style, from, lineEnd);
  return table.closer[from - table.base] != kNone;
}

void CloserSearch::build(Table& table, TextStyle style, size_t base, size_t lineEnd) {
  table.base = base;
  table.lineEnd = lineEnd;
  std::vector<uint32_t>& closer = table.closer;
  if (closer.size() < lineEnd - base + 1) closer.resize(lineEnd - base + 1);
  closer[lineEnd - base] = kNone;
  const char scalar = styleScalar(style);
  const bool isEmphasis = style == TextStyle::italic;
  HidingConstructs constructs(text_, lineEnd);
  Flanks run;
  for (size_t at = lineEnd; at-- > base;) {
    bool isMark = text_[at] == scalar;
    if (!isMark && !lexing::hasTrait(text_[at], lexing::kHidingByte)) {
      closer[at - base] = closer[at + 1 - base];
      continue;
    }
    size_t next = constructs.placeAfter(at);
    if (isMark) {
      const bool isDouble = at + 1 < lineEnd && text_[at + 1] == scalar;
      if (isEmphasis && isDouble) next = at + 2;  // bold is no closer of emphasis
      isMark = isDouble != isEmphasis;
    }
    if (isMark && (at < run.start || at >= run.end)) run = flanksOf(text_, at);
    uint32_t answer = closer[next - base];
    if (isMark && run.validRight) {
      answer = static_cast<uint32_t>(at - base);
    } else if (isMark && run.validLeft && answer != kNone) {
      answer = closer[answer + 1];  // behind the closer of this nested opener
    }
    closer[at - base] = answer;
  }
}

}  // namespace lk
