#pragma once

// What the block lexer yields: enough of each line to say what kind of paragraph it is.
//
// The covering law holds as for LToken, with one difference: where the text ends in a lone "#",
// `end` is the token that covers it.

#include <cstdint>
#include <string>

#include "LKCore/Base/TextRange.h"

namespace lk {

enum class PTokenKind : uint8_t {
  tabLevel,  // number: 0 to 22
  heading,   // number: 1 to 6
  ordered,   // number: the list number
  task,
  doneTask,
  inProgressTask,
  cancelledTask,
  unordered,
  eol,
  end,
  ignore,  // text without a meaning for the block
  blockQuote,
  codeBlockFence,
  tableRow,
  horizontalRule,
  footnoteDefinition,
  htmlCommentOpen,
  htmlCommentClose,
};

struct PToken {
  PTokenKind kind = PTokenKind::ignore;
  TextRange range;     // UTF-8 bytes of the text that the token consumed
  int64_t number = 0;  // see PTokenKind; else 0

  bool operator==(const PToken&) const = default;
};

// One line for people and tests: "0-2 heading 1".
std::string describe(const PToken& token);

}  // namespace lk
