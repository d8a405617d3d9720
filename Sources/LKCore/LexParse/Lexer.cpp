#include "LKCore/LexParse/Lexer.h"

#include <algorithm>
#include <charconv>
#include <system_error>
#include <utility>

#include "LKCore/Base/Text.h"

namespace lk {

using lexing::hasTrait;
using lexing::terminatorLength;

Lexer::Lexer(std::string_view string) : Lexer(string, LKProjectTerms::snapshot()) {}

Lexer::Lexer(std::string_view string, std::shared_ptr<const LKProjectTermsSnapshot> projectTerms)
    : scanner_(string), projectTerms_(std::move(projectTerms)), closers_(string) {}

std::vector<LToken> Lexer::lex() {
  std::vector<LToken> tokens;
  // Two a line, and a few more. Empty lines alone would otherwise double a list of millions again
  // and again, and fresh memory costs more than lexing.
  const std::string_view left = text().substr(index());
  const auto lineEnds =
      std::ranges::count_if(left, [](const char c) { return c == '\n' || c == '\r'; });
  tokens.reserve(static_cast<size_t>(lineEnds) * 2 + left.size() / 12 + 8);
  do {
    tokens.push_back(nextToken());
  } while (tokens.back().kind != LTokenKind::end);
  return tokens;
}

LToken Lexer::nextToken() {
  const size_t start = index();
  LToken token = scanToken();
  token.range = {start, index()};
  if (token.kind == LTokenKind::string) token.text = token.range.of(text());
  // A line has one mark at its start at most, and none behind inline marks or text.
  startLine_ = token.kind == LTokenKind::tabLevel || token.kind == LTokenKind::eol;
  return token;
}

void Lexer::goOnAt(size_t lineStart) {
  scanner_.seek(lineStart);
  startLine_ = true;
  beginLine();
}

LToken Lexer::scanToken() {
  // Asked of the index, not of the scalar: a U+FFFF in the text is not its end.
  if (scanner_.isAtEnd()) return mark(LTokenKind::end, 0);
  if (!tabScanned_) return scanSpaces();
  if (startLine_ && hasTrait(text()[index()], lexing::kLineStartByte)) {
    LToken token = scanLineStart();
    if (token.kind != LTokenKind::ignore) return token;
  }
  return scanInline();
}

// --- The line's start ----------------------------------------------------------------------------

LToken Lexer::scanSpaces() {
  tabScanned_ = true;
  isIndented_ = false;
  // Most lines begin with ASCII that is no blank.
  if (const int c = scanner_.byte(); c > ' ' && c < 0x80) return mark(LTokenKind::tabLevel, 0);
  size_t tabs = 0;
  size_t spaces = 0;
  size_t at = index();
  while (at < text().size()) {
    size_t length = 1;
    if (text()[at] == '\t') {
      ++tabs;
    } else if (text()[at] == ' ') {
      ++spaces;
    } else {
      if (static_cast<unsigned char>(text()[at]) < 0x80) break;
      const text::Decoded d = text::decode(text(), at);
      if (!text::isBlank(d.scalar)) break;
      ++spaces;
      length = d.length;
    }
    at += length;
  }
  isIndented_ = tabs + spaces > 0;
  LToken token = mark(LTokenKind::tabLevel, at - index());
  token.number = lexing::indentLevel(tabs, spaces);
  return token;
}

LToken Lexer::scanLineStart() {
  const int c = scanner_.byte();
  switch (c) {
    case '#':
      return scanLineStartHash();
    case '-':
      return scanDash();
    case '>':
      return scanBlockQuote();
    case '|':
      return stringOf(1);
    case '*':
      if (scanner_.byte(1) != ' ') return {};
      return mark(LTokenKind::unordered, 2, slice(index(), index() + 1));
    case '`':
      if (scanner_.byte(1) != '`' || (isIndented_ && text()[index() - 1] == '\t')) return {};
      return scanCodeBlock();
    default:
      return c >= '1' && c <= '9' ? scanOrdered() : LToken{};
  }
}

LToken Lexer::scanLineStartHash() {
  const auto isOver = [](int c) { return c == '\n' || c == -1; };
  if (!isIndented_) {
    const int next = scanner_.byte(1);
    if (isOver(next)) return stringOf(1);
    if (next == ' ' && isOver(scanner_.byte(2))) return scanText(2);
    if (next == ' ') {
      LToken token = mark(LTokenKind::heading, 2);
      token.number = 1;
      return token;
    }
    if (next == '#') return scanMinorHeading();
  }
  return opensTag() ? scanTag() : scanText(1);
}

LToken Lexer::scanMinorHeading() {
  size_t count = 2;
  while (count < 6 && scanner_.byte(count) == '#') ++count;
  if (scanner_.byte(count) != ' ') return stringOf(count);
  if (scanner_.isLineOver(count + 1)) return stringOf(count + 1);
  LToken token = mark(LTokenKind::heading, count + 1);
  token.number = static_cast<int64_t>(count);
  return token;
}

LToken Lexer::scanDash() {
  if (scanner_.byte(1) != ' ') return stringOf(1);
  if (scanner_.byte(2) != '[') {
    return mark(LTokenKind::unordered, 2, slice(index(), index() + 1));
  }
  LTokenKind kind = LTokenKind::ignore;
  switch (scanner_.byte(3)) {
    case ' ':
      kind = LTokenKind::task;
      break;
    case '/':
      kind = LTokenKind::inProgressTask;
      break;
    case '-':
      kind = LTokenKind::cancelledTask;
      break;
    case 'x':
    case 'X':
      kind = LTokenKind::doneTask;
      break;
    default:
      return stringOf(1);
  }
  const bool isSpaced = scanner_.byte(5) == ' ';
  if (scanner_.byte(4) != ']' || (!isSpaced && !scanner_.isLineOver(5))) return stringOf(1);
  currentLineIsTask_ = true;
  return mark(kind, isSpaced ? 6 : 5);
}

LToken Lexer::scanOrdered() {
  size_t end = index();
  while (end < text().size() && text()[end] >= '0' && text()[end] <= '9') ++end;
  int64_t number = 0;
  const auto read = std::from_chars(text().data() + index(), text().data() + end, number);
  if (read.ec != std::errc{} || !text().substr(end).starts_with(". ")) return scanText(1);
  LToken token = mark(LTokenKind::ordered, end + 2 - index());
  token.number = number;
  return token;
}

LToken Lexer::scanBlockQuote() {
  size_t length = 1;
  for (;;) {
    if (scanner_.byte(length) == '>') {
      length += 1;
    } else if (scanner_.byte(length) == ' ' && scanner_.byte(length + 1) == '>') {
      length += 2;
    } else {
      break;
    }
  }
  const std::string_view marks = slice(index(), index() + length);
  if (scanner_.byte(length) == ' ') {
    LToken admonition = scanAdmonition(marks);
    if (admonition.kind != LTokenKind::ignore) return admonition;
  } else if (!scanner_.isLineOver(length)) {
    return stringOf(length);
  }
  return mark(LTokenKind::blockQuote, length, marks);
}

LToken Lexer::scanAdmonition(std::string_view marks) {
  static constexpr std::array<std::string_view, 5> kKinds = {"NOTE", "TIP", "IMPORTANT", "WARNING",
                                                             "CAUTION"};
  // Longer words are not worth upper-casing: the longest kind, with the two-byte dotless i.
  constexpr size_t kLongest = 10;
  const size_t open = index() + marks.size();
  if (!text().substr(open).starts_with(" [!")) return {};
  const size_t start = open + 3;
  const size_t end = find(closeSquare_, start);
  if (end == currentLineEnd() || end - start > kLongest) return {};
  const std::string word = text::uppercased(slice(start, end));
  const auto* const kind = std::ranges::find(kKinds, word);
  if (kind == kKinds.end()) return {};
  LToken token = mark(LTokenKind::admonition, end + 1 - index(), marks);
  token.key = *kind;
  return token;
}

LToken Lexer::scanCodeBlock() {
  if (scanner_.byte(2) != '`') return stringOf(2);
  const size_t end = currentLineEnd();
  return mark(LTokenKind::codeBlockFence, end - index(), slice(index() + 3, end));
}

// --- Text and the choice among inline marks ------------------------------------------------------

LToken Lexer::scanInline() {
  const char c = text()[index()];
  if (c == '\n') return scanLineEnd(1);
  if (hasTrait(c, lexing::kTextStopByte)) {
    if (lexing::isDelimiter(c)) {
      LToken token = scanSpecial(c);
      return token.kind == LTokenKind::ignore ? stringOf(1) : token;
    }
    if (const size_t length = terminatorLength(text(), index())) return scanLineEnd(length);
    if (c == '<') {
      LToken token = scanComment();
      if (token.kind != LTokenKind::ignore) return token;
    }
  }
  if (currentLineIsTask_ && isAtWordStart(index())) {
    LToken token = scanTaskMeta();
    if (token.kind != LTokenKind::ignore) return token;
  }
  LToken token = scanText(0);
  if (token.kind != LTokenKind::ignore) return token;
  return stringOf(text::decode(text(), index()).length);
}

LToken Lexer::scanLineEnd(size_t length) {
  beginLine();
  return mark(LTokenKind::eol, length);
}

void Lexer::beginLine() {
  tabScanned_ = false;
  currentLineIsTask_ = false;
  leftDelimiters_.fill(0);
  lineEnd_ = kUnknown;
}

// Steps over `include` bytes, all of them ASCII marks, and on to where something else may begin.
LToken Lexer::scanText(size_t include) {
  const size_t start = index() + include;
  const bool meetsWord = currentLineIsTask_ && isAtWordStart(start) && opensTaskMeta(start);
  const size_t end = meetsWord ? start : textEnd(start);
  return end == index() ? LToken{} : stringOf(end - index());
}

size_t Lexer::textEnd(size_t from) const {
  const std::string_view all = text();
  const auto skip = [&](size_t at) {
    return currentLineIsTask_ ? lexing::skipToTaskStop(all, at) : lexing::skipToTextStop(all, at);
  };
  for (size_t at = skip(from); at < all.size(); at = skip(at + 1)) {
    const char c = all[at];
    if (lexing::isDelimiter(c) || terminatorLength(all, at) != 0) return at;
    if (c == '<' && all.substr(at).starts_with("<!-")) return at;
    if (c == ' ' && opensTaskMeta(at + 1)) return at + 1;
  }
  return all.size();
}

// --- Metadata of a task --------------------------------------------------------------------------

// On a task line a word begins behind a space alone: the line's and the text's start have the
// task's mark behind them.
bool Lexer::isAtWordStart(size_t at) const {
  return text()[at - 1] == ' ';
}

bool Lexer::opensTaskMeta(size_t at) const {
  const std::string_view rest = text().substr(at);
  if (rest.starts_with("co") || rest.starts_with("pr") || rest.starts_with("do") ||
      rest.starts_with("du")) {
    return true;
  }
  if (rest.empty()) return false;
  const text::Decoded first = text::decode(rest, 0);
  if (first.length == rest.size()) return false;
  const std::pair pair{first.scalar, text::decode(rest, first.length).scalar};
  const auto& pairs = projectTerms_->keywordBreakPairs;
  return std::ranges::find(pairs, pair) != pairs.end();
}

LToken Lexer::scanTaskMeta() {
  static constexpr std::array<std::string_view, 5> kKeys = {
      "contexts:", "context:", "priority:", "due:", "done:"};
  const std::string_view rest = text().substr(index());
  size_t keyed = 0;  // length of the key with its colon
  for (const std::string_view key : kKeys) {
    if (keyed == 0 && rest.starts_with(key)) keyed = key.size();
  }
  for (const auto& word : projectTerms_->keywordScalars) {
    if (keyed == 0 && rest.starts_with(word.withColon)) keyed = word.withColon.size();
  }
  if (keyed == 0) return {};
  size_t end = keyed;
  while (end < rest.size()) {
    const text::Decoded d = text::decode(rest, end);
    if (text::isWhitespaceOrNewline(d.scalar)) break;
    end += d.length;
  }
  if (end == keyed) return {};
  LToken token = mark(LTokenKind::taskMeta, end, rest.substr(keyed, end - keyed));
  token.key = rest.substr(0, keyed - 1);
  return token;
}

// --- Small helpers -------------------------------------------------------------------------------

LToken Lexer::mark(LTokenKind kind, size_t bytes, std::string_view payload) {
  scanner_.seek(index() + bytes);
  LToken token;
  token.kind = kind;
  token.text = payload;
  return token;
}

LToken Lexer::stringOf(size_t bytes) {
  return mark(LTokenKind::string, bytes);
}

std::string_view Lexer::slice(size_t start, size_t end) const {
  return text().substr(start, end - start);
}

size_t Lexer::currentLineEnd() {
  if (lineEnd_ == kUnknown) lineEnd_ = lexing::lineEnd(text(), index());
  return lineEnd_;
}

size_t Lexer::find(LineFinder& finder, size_t from) {
  return finder.find(text(), from, currentLineEnd());
}

}  // namespace lk
