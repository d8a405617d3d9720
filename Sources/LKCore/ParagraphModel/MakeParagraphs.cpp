#include "LKCore/ParagraphModel/MakeParagraphs.h"

#include <cstddef>
#include <optional>
#include <string>

#include "LKCore/Base/Text.h"
#include "LKCore/LexParse/CharacterSets.h"
#include "LKCore/LexParse/ParagraphLexer.h"
#include "LKCore/ParagraphModel/ParagraphPasses.h"
#include "LKCore/ParagraphModel/TableGrouping.h"

namespace lk {

namespace {

// Behind the line end that closes the paragraph at `start`, or the text's size.
size_t paragraphEnd(std::string_view text, size_t start) {
  size_t at = lexing::lineEnd(text, start);
  while (at < text.size() && (text[at] == '\v' || text[at] == '\f')) {
    at = lexing::lineEnd(text, at + 1);
  }
  if (text.substr(at).starts_with("\r\n")) return at + 2;
  return at + lexing::terminatorLength(text, at);
}

template <typename Visit>
void forEachLine(std::string_view text, const Visit& visit) {
  for (size_t start = 0; start < text.size();) {
    const TextRange line{start, paragraphEnd(text, start)};
    visit(line);
    start = line.end;
  }
}

// The kind of paragraph that a token makes of its line; nothing when it makes none.
std::optional<ParagraphKind> paragraphKind(PTokenKind token, LineReading reading) {
  switch (token) {
    case PTokenKind::heading:
      return ParagraphKind::heading;
    case PTokenKind::ordered:
      return ParagraphKind::ordered;
    case PTokenKind::task:
      return ParagraphKind::task;
    case PTokenKind::doneTask:
      return ParagraphKind::doneTask;
    case PTokenKind::inProgressTask:
      return ParagraphKind::inProgressTask;
    case PTokenKind::cancelledTask:
      return ParagraphKind::cancelledTask;
    case PTokenKind::unordered:
      return ParagraphKind::unordered;
    case PTokenKind::blockQuote:
      return ParagraphKind::blockQuote;
    case PTokenKind::codeBlockFence:
      return ParagraphKind::codeBlockFence;
    case PTokenKind::tableRow:
      return ParagraphKind::tableRow;
    case PTokenKind::horizontalRule:
      return ParagraphKind::horizontalRule;
    case PTokenKind::htmlCommentOpen:
      return ParagraphKind::htmlCommentOpen;
    case PTokenKind::htmlCommentClose:
      return ParagraphKind::htmlCommentClose;
    case PTokenKind::footnoteDefinition:
      if (reading == LineReading::wholeText) return std::nullopt;
      return ParagraphKind::footnoteDefinition;
    case PTokenKind::tabLevel:
    case PTokenKind::eol:
    case PTokenKind::end:
    case PTokenKind::ignore:
      return std::nullopt;
  }
  return std::nullopt;
}

}  // namespace

std::vector<TextRange> paragraphLines(std::string_view text) {
  std::vector<TextRange> lines;
  forEachLine(text, [&](const TextRange& line) { lines.push_back(line); });
  return lines;
}

void classify(Paragraph& paragraph, std::string_view line, LineReading reading) {
  paragraph.type = {};
  paragraph.tabLevel = 0;
  paragraph.quoteLevel = 0;
  ParagraphLexer lexer(line);
  for (PToken token = lexer.nextToken();
       token.kind != PTokenKind::eol && token.kind != PTokenKind::end; token = lexer.nextToken()) {
    if (token.kind == PTokenKind::tabLevel) paragraph.tabLevel = static_cast<int>(token.number);
    const std::optional<ParagraphKind> kind = paragraphKind(token.kind, reading);
    if (kind) paragraph.type = {*kind, token.number};
  }
  if (paragraph.type.kind == ParagraphKind::blockQuote) {
    paragraph.quoteLevel = countQuoteLevel(line);
  }
  if (text::trimmed(line).empty()) paragraph.type = {ParagraphKind::isEmpty, 0};
}

std::vector<Paragraph> makeParagraphs(std::string_view text,
                                      const LKEditorCapabilities& capabilities) {
  const UTF16Text storage(text);
  // Counted first: a million empty lines are a quarter of a gigabyte that no list should copy.
  size_t count = 0;
  forEachLine(text, [&](const TextRange&) { ++count; });
  UUIDBatch ids;
  std::vector<Paragraph> paragraphs;
  paragraphs.reserve(count);
  size_t location = 0;
  forEachLine(text, [&](const TextRange& line) {
    Paragraph& paragraph = paragraphs.emplace_back(ids.next(), location);
    const size_t end = storage.utf16Offset(line.end);
    paragraph.range.length = end - location;
    paragraph.text = std::string(line.of(text));
    classify(paragraph, paragraph.line(), LineReading::wholeText);
    location = end;
  });
  pairCodeBlockFences(paragraphs);
  groupAllTableRows(paragraphs, capabilities);
  pairCommentBlocks(paragraphs);
  return paragraphs;
}

}  // namespace lk
