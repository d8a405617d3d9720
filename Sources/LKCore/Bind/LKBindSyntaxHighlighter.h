#pragma once

// Colours for fenced code: keywords, texts, comments and numbers, as `colouredCode` finds them. A
// language that nobody here knows stays plain, and all code where that part is not installed.
//
//     tokens("let x = 1 // one", "swift")    // keyword "let", number "1", comment "// one"

#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/TextRange.h"
#include "LKCore/Modules/CodeColours.h"

namespace lk::LKBindSyntaxHighlighter {

using TokenKind = CodeColour;

struct Token {
  TextRange range;  // UTF-8 bytes of the code
  TokenKind kind = TokenKind::keyword;

  bool operator==(const Token&) const = default;
};

// In the order of the code, without overlap; what lies between is plain. The language in any case.
std::vector<Token> tokens(std::string_view code, std::string_view language);

// The HTML with spans in the code blocks that name a language.
std::string applyToHTML(std::string_view html);

// "hl-keyword"
std::string_view className(TokenKind kind);

// "8a1c7c", the colour of that sheet.
std::string_view lightColour(TokenKind kind);

// The colours on light paper, dark enough to be read in grey as well.
std::string_view lightSheet();

}  // namespace lk::LKBindSyntaxHighlighter
