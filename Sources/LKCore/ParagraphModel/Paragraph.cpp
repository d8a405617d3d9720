#include "LKCore/ParagraphModel/Paragraph.h"

#include <array>
#include <utility>

#include "LKCore/LexParse/TokenText.h"

namespace lk {

namespace {

constexpr size_t kParagraphKindCount = static_cast<size_t>(ParagraphKind::undefined) + 1;

// In the order of ParagraphKind.
constexpr std::array<std::string_view, kParagraphKindCount> kParagraphKindNames = {
    "heading",  "ordered",        "unordered",          "blockQuote",      "task",
    "doneTask", "inProgressTask", "cancelledTask",      "isEmpty",         "codeBlockFence",
    "tableRow", "horizontalRule", "footnoteDefinition", "htmlCommentOpen", "htmlCommentClose",
    "undefined"};

constexpr std::array<std::string_view, 4> kTableRoleNames = {"none", "header", "separator", "data"};

}  // namespace

std::string_view roleText(TableRole role) {
  return kTableRoleNames[static_cast<size_t>(role)];
}

std::string describe(const ParagraphType& type) {
  std::string words(kParagraphKindNames[static_cast<size_t>(type.kind)]);
  const bool hasNumber = type.kind <= ParagraphKind::ordered;
  return hasNumber ? words.append(" ").append(std::to_string(type.number)) : words;
}

Paragraph::Paragraph(size_t location, std::optional<std::string> label)
    : Paragraph(UUID::random(), location, std::move(label)) {}

Paragraph::Paragraph(const UUID& identity, size_t location, std::optional<std::string> label)
    : range{location, 0}, tag(std::move(label)), id(identity) {}

std::string describe(const Paragraph& paragraph) {
  std::string line = lexing::describeRange({paragraph.range.location, paragraph.range.end()});
  const auto add = [&line](bool holds, std::string_view word) {
    if (holds) line.append(" ").append(word);
  };
  add(true, describe(paragraph.type));
  add(paragraph.tabLevel != 0, "level " + std::to_string(paragraph.tabLevel));
  add(paragraph.quoteLevel != 0, "quote " + std::to_string(paragraph.quoteLevel));
  add(paragraph.inCodeBlock, "code");
  add(paragraph.isUnpairedFence, "unpaired");
  add(paragraph.inComment, "comment");
  add(paragraph.inTable, "table");
  add(paragraph.tableRole != TableRole::none, roleText(paragraph.tableRole));
  add(paragraph.hasChildren, "children");
  add(paragraph.childrenAreFolded, "folded");
  add(paragraph.isLocked, "locked");
  return line;
}

}  // namespace lk
