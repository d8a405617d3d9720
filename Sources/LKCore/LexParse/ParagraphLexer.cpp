#include "LKCore/LexParse/ParagraphLexer.h"

#include <cstdint>
#include <limits>

namespace lk {

namespace {

constexpr bool isDigit(int byte) {
  return byte >= '0' && byte <= '9';
}

}  // namespace

PToken ParagraphLexer::nextToken() {
  const size_t start = scanner_.index();
  PToken token = scanToken();
  token.range = {start, scanner_.index()};
  return token;
}

PToken ParagraphLexer::scanToken() {
  if (scanner_.isAtEnd()) return {PTokenKind::end, {}, 0};
  if (!tabScanned_) {
    tabScanned_ = true;
    lineStart_ = scanner_.index();
    const LexScanner::Indent indent = scanner_.scanLeadingWhitespace();
    isIndented_ = indent.isIndented;
    return {PTokenKind::tabLevel, {}, indent.level};
  }
  if (startLine_) {
    // A line's head ends with its first mark; the few scans that go on reading it say so.
    startLine_ = false;
    if (!isIndented_) {
      if (const auto token = scanCommentLine()) return *token;
    }
    if (const auto token = scanLineStart()) return *token;
  }
  return scanToLineEnd();
}

// All but the last scalar of the rest of the line is one `ignore`, and the last one belongs to
// the `eol`.
PToken ParagraphLexer::scanToLineEnd() {
  const std::string_view text = scanner_.text();
  const size_t end = currentLineEnd();
  if (end > scanner_.index()) {
    const size_t last = end - text::decodeBefore(text, end).length;
    if (last > scanner_.index()) return take(PTokenKind::ignore, last - scanner_.index());
  }
  const size_t terminator = lexing::terminatorLength(text, end);
  if (terminator != 0) {
    startLine_ = true;
    tabScanned_ = false;
    lineEnd_ = kUnknown;
  }
  return take(PTokenKind::eol, end + terminator - scanner_.index());
}

// A comment's opening or closing line. One that opens and closes on the line is no block.
std::optional<PToken> ParagraphLexer::scanCommentLine() {
  const std::string_view text = scanner_.text();
  const size_t here = scanner_.index();
  // Searched over the whole text, so that a text without comments is searched once.
  size_t open = commentOpen_.find(text, here, text.size());
  size_t close = commentClose_.find(text, here, text.size());
  if (open == text.size() && close == text.size()) return {};
  const size_t end = currentLineEnd();
  const bool opens = open < end;
  const bool closes = close < end;
  if (opens && !closes && open == lineStart_) {
    return take(PTokenKind::htmlCommentOpen, end - here);
  }
  if (closes && (!opens || close < open)) return take(PTokenKind::htmlCommentClose, end - here);
  return {};
}

std::optional<PToken> ParagraphLexer::scanLineStart() {
  switch (const int c = scanner_.byte()) {
    case '>':
      return scanBlockQuote();
    case '[':
      return scanFootnoteDefinition();
    case '`':
      return scanFence();
    case '|':
      return take(PTokenKind::tableRow, 1);
    case '#':
      return scanHash();
    case '-':
      return scanDash();
    case '*':
      return scanner_.byte(1) == ' ' ? take(PTokenKind::unordered, 2) : scanRule('*');
    case '_':
      if (scanner_.byte(1) != '_' || scanner_.byte(2) != '_') return {};
      return scanRule('_');
    default:
      return isDigit(c) ? scanOrdered() : std::nullopt;
  }
}

std::optional<PToken> ParagraphLexer::scanBlockQuote() {
  const int next = scanner_.byte(1);
  if (next != ' ' && next != '>' && !scanner_.isLineOver(1)) return {};
  size_t length = 0;
  while (scanner_.byte(length) == '>') {
    ++length;
    if (scanner_.byte(length) == ' ') ++length;
  }
  return take(PTokenKind::blockQuote, length);
}

std::optional<PToken> ParagraphLexer::scanFootnoteDefinition() {
  if (scanner_.byte(1) != '^') return {};
  const std::string_view rest = scanner_.text().substr(0, currentLineEnd());
  const size_t label = scanner_.index() + 2;
  const size_t close = rest.find(']', label);
  if (close == std::string_view::npos || close == label) return {};
  if (!rest.substr(close).starts_with("]:")) return {};
  const size_t end = rest.substr(close).starts_with("]: ") ? close + 3 : close + 2;
  return take(PTokenKind::footnoteDefinition, end - scanner_.index());
}

std::optional<PToken> ParagraphLexer::scanFence() {
  if (scanner_.byte(1) != '`') return {};
  if (scanner_.index() > lineStart_) {
    const char before = scanner_.text()[scanner_.index() - 1];
    if (before == ' ' || before == '\t') return {};
  }
  if (scanner_.byte(2) != '`') return take(PTokenKind::ignore, 2);
  return take(PTokenKind::codeBlockFence, 3);
}

// Digits, a dot and a space. Where they do not make a number, the first digit is passed over and
// the line's head goes on at the next one; what is known of the run is kept for that.
std::optional<PToken> ParagraphLexer::scanOrdered() {
  const std::string_view text = scanner_.text();
  const size_t first = scanner_.index();
  if (first >= digitsTried_) {
    size_t end = first;
    while (end < text.size() && isDigit(text[end])) ++end;
    if (!text.substr(end).starts_with(". ")) {
      digitsTried_ = end;
    } else {
      const FittingNumber number = fittingNumber(text, {first, end});
      if (number.start == first) {
        return take(PTokenKind::ordered, end + 2 - first, number.value);
      }
      digitsTried_ = number.start;
    }
  }
  startLine_ = true;
  return take(PTokenKind::ignore, 1);
}

// The longest tail of a run of digits whose value fits a signed 64-bit integer.
ParagraphLexer::FittingNumber ParagraphLexer::fittingNumber(std::string_view text,
                                                            const TextRange& digits) {
  constexpr int kPlaces = 19;
  uint64_t value = 0;
  uint64_t power = 1;
  int places = 0;
  size_t start = digits.end;
  for (; start > digits.start; --start) {
    const auto digit = static_cast<uint64_t>(text[start - 1] - '0');
    if (digit != 0) {
      if (places >= kPlaces) break;
      const uint64_t sum = value + digit * power;
      if (sum > static_cast<uint64_t>(std::numeric_limits<int64_t>::max())) break;
      value = sum;
    }
    if (places < kPlaces) {
      ++places;
      if (places < kPlaces) power *= 10;
    }
  }
  return {start, static_cast<int64_t>(value)};
}

std::optional<PToken> ParagraphLexer::scanHash() {
  if (isIndented_) return take(PTokenKind::ignore, 1);
  const int next = scanner_.byte(1);
  if (next == '#') {
    // The line's text is read for a mark once more, so that "## - x" ends as a list item.
    startLine_ = true;
    size_t count = 2;
    while (count < 6 && scanner_.byte(count) == '#') ++count;
    if (scanner_.byte(count) == ' ') {
      return take(PTokenKind::heading, count + 1, static_cast<int64_t>(count));
    }
    // The whole run goes, so that the tail of seven hashes makes no heading.
    while (scanner_.byte(count) == '#') ++count;
    return take(PTokenKind::ignore, count);
  }
  if (next == -1) return take(PTokenKind::end, 1);
  if (next == ' ' && scanner_.byte(2) != -1 && scanner_.byte(2) != '\n') {
    return take(PTokenKind::heading, 2, 1);
  }
  startLine_ = true;
  return take(PTokenKind::ignore, 1);
}

std::optional<PToken> ParagraphLexer::scanDash() {
  if (const size_t length = ruleLength('-')) return take(PTokenKind::horizontalRule, length);
  if (scanner_.byte(1) == ' ') {
    if (scanner_.byte(2) != '[') return take(PTokenKind::unordered, 2);
    if (const auto token = scanCheckbox()) return token;
  }
  return take(PTokenKind::ignore, 1);
}

std::optional<PToken> ParagraphLexer::scanCheckbox() {
  PTokenKind kind = PTokenKind::ignore;
  switch (scanner_.byte(3)) {
    case ' ':
      kind = PTokenKind::task;
      break;
    case '/':
      kind = PTokenKind::inProgressTask;
      break;
    case '-':
      kind = PTokenKind::cancelledTask;
      break;
    case 'x':
    case 'X':
      kind = PTokenKind::doneTask;
      break;
    default:
      return {};
  }
  const bool isSpaced = scanner_.byte(5) == ' ';
  if (scanner_.byte(4) != ']' || (!isSpaced && !scanner_.isLineOver(5))) return {};
  return take(kind, isSpaced ? 6 : 5);
}

std::optional<PToken> ParagraphLexer::scanRule(char marker) {
  const size_t length = ruleLength(marker);
  return length == 0 ? take(PTokenKind::ignore, 1) : take(PTokenKind::horizontalRule, length);
}

// The bytes of three or more markers and any spaces that fill the rest of the line, or 0.
size_t ParagraphLexer::ruleLength(char marker) const {
  size_t length = 0;
  while (scanner_.byte(length) == marker) ++length;
  if (length < 3) return 0;
  while (scanner_.byte(length) == ' ') ++length;
  return scanner_.isLineOver(length) ? length : 0;
}

PToken ParagraphLexer::take(PTokenKind kind, size_t bytes, int64_t number) {
  scanner_.seek(scanner_.index() + bytes);
  return {kind, {}, number};
}

size_t ParagraphLexer::currentLineEnd() {
  if (lineEnd_ == kUnknown) lineEnd_ = lexing::lineEnd(scanner_.text(), scanner_.index());
  return lineEnd_;
}

}  // namespace lk
