// The inline marks of the lexer: tags, dates, links, code, comments and styles. A scan that does
// not find its construct returns `ignore` and leaves the index where it was.

#include "LKCore/Base/Text.h"
#include "LKCore/LexParse/Lexer.h"

namespace lk {

using lexing::isDelimiter;

LToken Lexer::scanSpecial(char special) {
  switch (special) {
    case '#': {
      const bool isFree = isDelimiter(text()[index() - 1]) || isAfterBlank();
      return isFree && opensTag() ? scanTag() : LToken{};
    }
    case '@':
      return startLine_ || isAfterBlank() ? scanDateRef() : LToken{};
    case '!':
      return scanner_.byte(1) == '[' ? scanImage() : LToken{};
    case '(':
      return index() > 0 && text()[index() - 1] == ']' ? scanUrl() : LToken{};
    case '[':
      return scanSquareBracket();
    case '`':
      return scanInlineCode();
    case '*':
      return scanStar();
    case '~':
      return scanDoubled(TextStyle::strikethrough);
    case '=':
      return scanDoubled(TextStyle::highlight);
    default:
      return scanDoubled(TextStyle::legacyHighlight);
  }
}

// --- Tags and dates ------------------------------------------------------------------------------

bool Lexer::isAfterBlank() const {
  return index() > 0 && text::isBlank(text::decodeBefore(text(), index()).scalar);
}

bool Lexer::opensTag() const {
  const size_t next = index() + 1;
  return next < text().size() && text::isLetter(text::decode(text(), next).scalar);
}

size_t Lexer::tagRunEnd(size_t from) const {
  size_t at = from;
  while (at < text().size()) {
    if (lexing::hasTrait(text()[at], lexing::kTagByte)) {
      ++at;
      continue;
    }
    const text::Decoded d = text::decode(text(), at);
    if (!lexing::isTagCharacter(d.scalar)) break;
    at += d.length;
  }
  return at;
}

// Whether what stands behind a run lets it be a tag or a date.
bool Lexer::endsTag(size_t at) const {
  if (at == text().size() || isDelimiter(text()[at])) return true;
  const text::Decoded d = text::decode(text(), at);
  return text::isWhitespaceOrNewline(d.scalar) || at + d.length == text().size();
}

LToken Lexer::scanTag() {
  const size_t end = tagRunEnd(index() + 1);
  if (!endsTag(end)) return stringOf(end - index());
  return mark(LTokenKind::tag, end - index(), slice(index(), end));
}

LToken Lexer::scanDateRef() {
  const size_t start = index() + 1;
  if (start == text().size()) return stringOf(1);
  if (text::isBlank(text::decode(text(), start).scalar)) return {};
  const size_t end = tagRunEnd(start);
  size_t digits = 0;
  bool isNumeric = true;
  for (size_t at = start; at < end && digits <= 8; ++digits) {
    const text::Decoded d = text::decode(text(), at);
    isNumeric = isNumeric && text::isDecimalDigit(d.scalar);
    at += d.length;
  }
  if (digits != 8 || !isNumeric || !endsTag(end)) return stringOf(end - index());
  return mark(LTokenKind::dateRef, end - index(), slice(index(), end));
}

// --- Brackets ------------------------------------------------------------------------------------

LToken Lexer::scanSquareBracket() {
  if (scanner_.byte(1) == '^') {
    LToken token = scanFootnoteRef();
    if (token.kind != LTokenKind::ignore) return token;
  }
  // A back link that fails is not tried as a bracket: "[[a](b)" is text and a link of "a".
  return scanner_.byte(1) == '[' ? scanBackLink() : scanBracket();
}

LToken Lexer::scanImage() {
  const size_t start = index() + 2;
  const size_t end = find(closeSquare_, start);
  if (end == currentLineEnd() || !text().substr(end).starts_with("](")) return {};
  return mark(LTokenKind::image, end + 1 - index(), slice(start, end));
}

LToken Lexer::scanBracket() {
  const size_t start = index() + 1;
  const size_t end = find(closeSquare_, start);
  const bool isLink = end != currentLineEnd() && text().substr(end).starts_with("](");
  if (!isLink || end == start) return {};
  return mark(LTokenKind::bracket, end + 1 - index(), slice(start, end));
}

LToken Lexer::scanUrl() {
  const size_t start = index() + 1;
  const size_t end = find(closeRound_, start);
  if (end == currentLineEnd() || end == start) return {};
  return mark(LTokenKind::url, end + 1 - index(), slice(start, end));
}

LToken Lexer::scanBackLink() {
  const size_t start = index() + 2;
  const size_t end = find(closeDouble_, start);
  if (end == currentLineEnd() || end == start || find(openSquare_, start) < end) return {};
  return mark(LTokenKind::backLink, end + 2 - index(), slice(start, end));
}

LToken Lexer::scanFootnoteRef() {
  const size_t start = index() + 2;
  const size_t end = find(closeSquare_, start);
  if (end == currentLineEnd() || end == start || find(openSquare_, start) < end) return {};
  return mark(LTokenKind::footnoteRef, end + 1 - index(), slice(start, end));
}

// --- Code and comments ---------------------------------------------------------------------------

LToken Lexer::scanInlineCode() {
  if (scanner_.isLineOver(1)) return stringOf(1);
  if (scanner_.byte(1) == '`') return stringOf(2);
  const size_t start = index() + 1;
  const size_t end = find(backtick_, start);
  if (end == currentLineEnd()) return {};
  return mark(LTokenKind::inlineCode, end + 1 - index(), slice(start, end));
}

LToken Lexer::scanComment() {
  if (!text().substr(index()).starts_with("<!--")) return {};
  const size_t start = index() + 4;
  const size_t end = find(commentEnd_, start);
  if (end == currentLineEnd()) return {};
  return mark(LTokenKind::htmlComment, end + 3 - index(), slice(start, end));
}

// --- Styles --------------------------------------------------------------------------------------

namespace {

struct StyleTokens {
  LTokenKind left;
  LTokenKind right;
  size_t length;
};

StyleTokens tokensOf(TextStyle style) {
  switch (style) {
    case TextStyle::italic:
      return {LTokenKind::leftEmphasis, LTokenKind::rightEmphasis, 1};
    case TextStyle::strikethrough:
      return {LTokenKind::leftStrikethrough, LTokenKind::rightStrikethrough, 2};
    case TextStyle::highlight:
      return {LTokenKind::leftHighlight, LTokenKind::rightHighlight, 2};
    case TextStyle::legacyHighlight:
      return {LTokenKind::legacyLeftHighlight, LTokenKind::legacyRightHighlight, 2};
    default:
      return {LTokenKind::leftBold, LTokenKind::rightBold, 2};
  }
}

}  // namespace

// The closing token, when a mark of the style is open and may close here.
LToken Lexer::closeStyle(TextStyle style) {
  int& open = leftDelimiters_[static_cast<size_t>(style)];
  if (open == 0 || !closers_.flanks(index()).validRight) return {};
  --open;
  const StyleTokens tokens = tokensOf(style);
  return mark(tokens.right, tokens.length);
}

// The opening token, when a mark may open here and has its closer at or after `searchFrom`.
LToken Lexer::openStyle(TextStyle style, size_t searchFrom) {
  if (!closers_.flanks(index()).validLeft) return {};
  if (!closers_.finds(style, searchFrom, currentLineEnd())) return {};
  ++leftDelimiters_[static_cast<size_t>(style)];
  const StyleTokens tokens = tokensOf(style);
  return mark(tokens.left, tokens.length);
}

LToken Lexer::scanStar() {
  const bool isDouble = scanner_.byte(1) == '*';
  const bool isTriple = isDouble && scanner_.byte(2) == '*';
  LToken token;
  if (isDouble) token = closeStyle(TextStyle::bold);
  if (token.kind == LTokenKind::ignore && isDouble == isTriple) {
    token = closeStyle(TextStyle::italic);
  }
  if (token.kind == LTokenKind::ignore) {
    // Three stars open emphasis by the first, and what is left of them reads as bold.
    const TextStyle style = isDouble && !isTriple ? TextStyle::bold : TextStyle::italic;
    token = openStyle(style, index() + (isTriple ? 3 : isDouble ? 2 : 1));
  }
  return token.kind == LTokenKind::ignore ? scanText(1) : token;
}

LToken Lexer::scanDoubled(TextStyle style) {
  if (scanner_.byte(1) != styleScalar(style)) return stringOf(1);
  LToken token = closeStyle(style);
  if (token.kind == LTokenKind::ignore) token = openStyle(style, index() + 2);
  return token.kind == LTokenKind::ignore ? scanText(1) : token;
}

}  // namespace lk
