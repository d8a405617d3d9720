#pragma once

// What the inline lexer yields: the marks, links, tags and plain stretches of a text, in order.
//
//   "# Hi #tag" -> tabLevel 0, heading 1, string "Hi ", tag "#tag", end
//
// The covering law: the ranges of a text's tokens follow one another without gap or overlap from
// byte 0 to the text's size, where `end` stands as an empty range. A token's views point into the
// lexed text and live as long as it does.

#include <cstdint>
#include <string>
#include <string_view>

#include "LKCore/Base/TextRange.h"

namespace lk {

enum class LTokenKind : uint8_t {
  tabLevel,        // number: indent level of the line, 0 to 22; first token of every line
  string,          // text: plain text
  heading,         // number: 1 to 6
  tag,             // text: with its leading "#"
  blockQuote,      // text: the quote marks, e.g. "> >"
  admonition,      // text: the quote marks; key: NOTE, TIP, IMPORTANT, WARNING or CAUTION
  dateRef,         // text: "@" and eight digits
  unordered,       // text: "-" or "*"
  ordered,         // number: the list number
  codeBlockFence,  // text: info string, as written after the three backticks
  inlineCode,      // text: what the backticks enclose
  bracket,         // text: link text of "[text](", up to but without the "("
  backLink,        // text: target of "[[target]]"
  url,             // text: target of "(target)" behind a bracket
  image,           // text: alt text of "![alt](", up to but without the "("
  taskMeta,        // key and text: "key:text" on a task line
  footnoteRef,     // text: label of "[^label]"
  htmlComment,     // text: content of a comment on one line
  task,
  doneTask,
  inProgressTask,
  cancelledTask,
  leftEmphasis,
  rightEmphasis,
  leftBold,
  rightBold,
  leftHighlight,
  rightHighlight,
  legacyLeftHighlight,
  legacyRightHighlight,
  leftStrikethrough,
  rightStrikethrough,
  eol,
  end,
  ignore,  // inside the lexer only: a scan that declined
};

enum class TextStyle : uint8_t {
  bold,
  italic,
  strikethrough,
  highlight,
  inlineCode,
  legacyHighlight
};

struct LToken {
  LTokenKind kind = LTokenKind::ignore;
  TextRange range;        // UTF-8 bytes of the text that the token consumed
  std::string_view text;  // see LTokenKind; else empty
  std::string_view key;   // see LTokenKind; else empty
  int64_t number = 0;     // see LTokenKind; else 0
};

// The token as it is written in a note, made from its payload: "#tag", "[[x]]", "**", "- [x] ".
// For `end` and `ignore` the empty text.
std::string sourceForm(const LToken& token);

// One line for people and tests, payloads quoted with \n, \t, \r, \", \\ and \u{...} escapes:
//   2-7 tag "#tags"        0-2 heading 1        6-20 taskMeta due "2024-01-01"
std::string describe(const LToken& token);

}  // namespace lk
