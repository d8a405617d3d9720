#include "LKCore/LexParse/LToken.h"

#include <array>
#include <cstddef>

#include "LKCore/LexParse/TokenText.h"

namespace lk {

namespace {

// A token's name, and its source form around the payload text. A form of nothing at all belongs
// to tokens whose source is made from a number, or that have none.
struct KindText {
  std::string_view name;
  std::string_view before;
  std::string_view after;
};

constexpr size_t kTokenKindCount = static_cast<size_t>(LTokenKind::ignore) + 1;

// In the order of LTokenKind.
constexpr std::array<KindText, kTokenKindCount> kKinds = {{
    {"tabLevel", "", ""},
    {"string", "", ""},
    {"heading", "", ""},
    {"tag", "", ""},
    {"blockQuote", "", ""},
    {"admonition", "", ""},
    {"dateRef", "", ""},
    {"unordered", "", " "},
    {"ordered", "", ""},
    {"codeBlockFence", "```", ""},
    {"inlineCode", "`", "`"},
    {"bracket", "[", "]"},
    {"backLink", "[[", "]]"},
    {"url", "(", ")"},
    {"image", "![", "]"},
    {"taskMeta", "", ""},
    {"footnoteRef", "[^", "]"},
    {"htmlComment", "<!--", "-->"},
    {"task", "- [ ] ", ""},
    {"doneTask", "- [x] ", ""},
    {"inProgressTask", "- [/] ", ""},
    {"cancelledTask", "- [-] ", ""},
    {"leftEmphasis", "*", ""},
    {"rightEmphasis", "*", ""},
    {"leftBold", "**", ""},
    {"rightBold", "**", ""},
    {"leftHighlight", "==", ""},
    {"rightHighlight", "==", ""},
    {"legacyLeftHighlight", "::", ""},
    {"legacyRightHighlight", "::", ""},
    {"leftStrikethrough", "~~", ""},
    {"rightStrikethrough", "~~", ""},
    {"eol", "\n", ""},
    {"end", "", ""},
    {"ignore", "", ""},
}};

const KindText& kindText(LTokenKind kind) {
  return kKinds[static_cast<size_t>(kind)];
}

}  // namespace

std::string sourceForm(const LToken& token) {
  const auto number = static_cast<size_t>(token.number);
  switch (token.kind) {
    case LTokenKind::tabLevel:
      return std::string(number, '\t');
    case LTokenKind::heading:
      return std::string(number, '#') + " ";
    case LTokenKind::ordered:
      return std::to_string(token.number) + ". ";
    case LTokenKind::admonition:
      return std::string(token.text).append(" [!").append(token.key).append("]");
    case LTokenKind::taskMeta:
      return std::string(token.key).append(":").append(token.text);
    default:
      break;
  }
  const KindText& form = kindText(token.kind);
  return std::string(form.before).append(token.text).append(form.after);
}

std::string describe(const LToken& token) {
  std::string line =
      lexing::describeRange(token.range).append(" ").append(kindText(token.kind).name);
  switch (token.kind) {
    case LTokenKind::tabLevel:
    case LTokenKind::heading:
    case LTokenKind::ordered:
      return line.append(" ").append(std::to_string(token.number));
    default:
      break;
  }
  if (!token.key.empty()) line.append(" ").append(token.key);
  const bool hasText = token.kind < LTokenKind::task;
  return hasText ? line.append(" ").append(lexing::quoted(token.text)) : line;
}

}  // namespace lk
