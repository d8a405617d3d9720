#pragma once

// The inline lexer: the one place where the inline syntax of notes is defined.
//
//   for (const LToken& token : Lexer(body).lex()) ...
//   Lexer lexer(body);                       // or token by token, without a list
//   for (LToken t = lexer.nextToken(); t.kind != LTokenKind::end; t = lexer.nextToken()) ...
//
// It never fails: what does not complete a construct is text. The text, valid UTF-8, must outlive
// the tokens. Time is linear in the text, whatever the text is, and nothing is allocated for a
// token. Each line begins with `tabLevel`; at most one mark of the line's start follows (heading,
// list, quote, fence, task status); then inline marks and text; `eol` where the line has an end.
// The empty text is `end` alone.

#include <array>
#include <memory>
#include <string_view>
#include <vector>

#include "LKCore/LexParse/CloserSearch.h"
#include "LKCore/LexParse/LToken.h"
#include "LKCore/LexParse/LexScanner.h"
#include "LKCore/LexParse/LineFinder.h"
#include "LKCore/Terminology/LKProjectTerms.h"

namespace lk {

class Lexer {
 public:
  // With the words for projects that are in force.
  explicit Lexer(std::string_view string);
  Lexer(std::string_view string, std::shared_ptr<const LKProjectTermsSnapshot> projectTerms);

  // The next token; after `end`, `end` again.
  LToken nextToken();

  // Leaves the lines in between unread: what follows begins at byte `lineStart`, which is the
  // start of a line at or behind the index. Lines know nothing of each other.
  void goOnAt(size_t lineStart);

  // All that is left, `end` last.
  std::vector<LToken> lex();

 private:
  LToken scanToken();
  LToken scanSpaces();
  LToken scanLineStart();
  LToken scanLineStartHash();
  LToken scanMinorHeading();
  LToken scanDash();
  LToken scanOrdered();
  LToken scanBlockQuote();
  LToken scanAdmonition(std::string_view marks);
  LToken scanCodeBlock();
  LToken scanInline();
  LToken scanLineEnd(size_t length);
  void beginLine();
  LToken scanSpecial(char special);
  LToken scanText(size_t include);
  size_t textEnd(size_t from) const;
  LToken scanTag();
  LToken scanDateRef();
  LToken scanSquareBracket();
  LToken scanImage();
  LToken scanBracket();
  LToken scanUrl();
  LToken scanBackLink();
  LToken scanFootnoteRef();
  LToken scanInlineCode();
  LToken scanComment();
  LToken scanTaskMeta();
  LToken scanStar();
  LToken scanDoubled(TextStyle style);

  LToken stringOf(size_t bytes);
  LToken mark(LTokenKind kind, size_t bytes, std::string_view payload = {});
  LToken closeStyle(TextStyle style);
  LToken openStyle(TextStyle style, size_t searchFrom);

  std::string_view text() const { return scanner_.text(); }
  size_t index() const { return scanner_.index(); }
  std::string_view slice(size_t start, size_t end) const;
  bool isAfterBlank() const;
  bool opensTag() const;
  size_t tagRunEnd(size_t from) const;
  bool endsTag(size_t at) const;
  bool isAtWordStart(size_t at) const;
  bool opensTaskMeta(size_t at) const;
  size_t currentLineEnd();
  size_t find(LineFinder& finder, size_t from);

  LexScanner scanner_;
  std::shared_ptr<const LKProjectTermsSnapshot> projectTerms_;
  std::array<int, 6> leftDelimiters_{};  // open style marks of the current line, by TextStyle
  bool startLine_ = true;                // no token of this line but its tabLevel was read
  bool tabScanned_ = false;
  bool isIndented_ = false;
  bool currentLineIsTask_ = false;

  // What searches on the current line have proved.
  static constexpr size_t kUnknown = static_cast<size_t>(-1);
  size_t lineEnd_ = kUnknown;
  CloserSearch closers_;
  LineFinder openSquare_{"["};
  LineFinder closeSquare_{"]"};
  LineFinder closeDouble_{"]]"};
  LineFinder closeRound_{")"};
  LineFinder backtick_{"`"};
  LineFinder commentEnd_{"-->"};
};

}  // namespace lk
