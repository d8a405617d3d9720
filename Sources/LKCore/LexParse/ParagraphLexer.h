#pragma once

// The block lexer: says what kind of line each line is. It looks at a line's head and skips the
// rest, so that it can run on every keystroke and over the whole of a large note.
//
//   ParagraphLexer lexer("# Title\n- item");
//   // tabLevel 0, heading 1, ignore, eol, tabLevel 0, unordered, ignore, eol, end
//
// Its grammar differs from the inline lexer's on purpose: "0. x" is a list here, a fence after
// blanks is none, only U+0020 and tabs indent, and a line may yield more than one mark, of which
// the last counts ("## - x" is a list item). The text, valid UTF-8, must outlive the lexer. Time
// is linear in the text.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "LKCore/LexParse/LexScanner.h"
#include "LKCore/LexParse/LineFinder.h"
#include "LKCore/LexParse/PToken.h"

namespace lk {

class ParagraphLexer {
 public:
  explicit ParagraphLexer(std::string_view text) : scanner_(text) {}

  // The next token; after `end`, `end` again.
  PToken nextToken();

 private:
  struct FittingNumber {
    size_t start = 0;  // byte where it begins
    int64_t value = 0;
  };
  static FittingNumber fittingNumber(std::string_view text, const TextRange& digits);

  PToken scanToken();
  PToken scanToLineEnd();
  std::optional<PToken> scanCommentLine();
  std::optional<PToken> scanLineStart();
  std::optional<PToken> scanBlockQuote();
  std::optional<PToken> scanFootnoteDefinition();
  std::optional<PToken> scanFence();
  std::optional<PToken> scanOrdered();
  std::optional<PToken> scanHash();
  std::optional<PToken> scanDash();
  std::optional<PToken> scanCheckbox();
  std::optional<PToken> scanRule(char marker);
  size_t ruleLength(char marker) const;
  size_t currentLineEnd();
  PToken take(PTokenKind kind, size_t bytes, int64_t number = 0);

  LexScanner scanner_;
  bool startLine_ = true;
  bool tabScanned_ = false;
  bool isIndented_ = false;
  size_t lineStart_ = 0;
  size_t digitsTried_ = 0;  // no list number begins before this byte

  static constexpr size_t kUnknown = static_cast<size_t>(-1);
  size_t lineEnd_ = kUnknown;
  LineFinder commentOpen_{"<!--"};
  LineFinder commentClose_{"-->"};
};

}  // namespace lk
