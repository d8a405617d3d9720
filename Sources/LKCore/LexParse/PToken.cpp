#include "LKCore/LexParse/PToken.h"

#include <array>
#include <cstddef>
#include <string_view>

#include "LKCore/LexParse/TokenText.h"

namespace lk {

namespace {

constexpr size_t kParagraphTokenKindCount = static_cast<size_t>(PTokenKind::htmlCommentClose) + 1;

// In the order of PTokenKind.
constexpr std::array<std::string_view, kParagraphTokenKindCount> kNames = {"tabLevel",
                                                                           "heading",
                                                                           "ordered",
                                                                           "task",
                                                                           "doneTask",
                                                                           "inProgressTask",
                                                                           "cancelledTask",
                                                                           "unordered",
                                                                           "eol",
                                                                           "end",
                                                                           "ignore",
                                                                           "blockQuote",
                                                                           "codeBlockFence",
                                                                           "tableRow",
                                                                           "horizontalRule",
                                                                           "footnoteDefinition",
                                                                           "htmlCommentOpen",
                                                                           "htmlCommentClose"};

}  // namespace

std::string describe(const PToken& token) {
  std::string line = lexing::describeRange(token.range);
  line.append(" ").append(kNames[static_cast<size_t>(token.kind)]);
  const bool hasNumber = token.kind <= PTokenKind::ordered;
  return hasNumber ? line.append(" ").append(std::to_string(token.number)) : line;
}

}  // namespace lk
