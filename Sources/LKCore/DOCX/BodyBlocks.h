#pragma once

// A note's Markdown as the blocks that a Word document is made of.
//
//     parseBodyBlocks("## Night\nIt rained.\n- a\n- b", LKBindParagraphStyle::larkspireNative)
//     // a sub-heading, a line of prose, a bulleted list of two
//
// Pure; linear in the body; nothing is lost: what is no other block is prose.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "LKCore/Bind/LKBindSpec.h"
#include "LKCore/Rendering/LKInlineImage.h"

namespace lk {

struct DOCXListItem {
  std::string text;                    // Markdown of one line
  size_t level = 0;                    // 0 to 8
  std::optional<int64_t> number = {};  // as it is written; absent: a bullet

  bool operator==(const DOCXListItem&) const = default;
};

namespace BodyBlocks {

// Each line is a paragraph.
struct Prose {
  std::vector<std::string> lines;
};
// Deeper items may be of either kind.
struct BulletedList {
  std::vector<DOCXListItem> items;
};
struct NumberedList {
  std::vector<DOCXListItem> items;
};
struct BlockQuote {
  std::vector<std::string> lines;  // without their signs; an empty one divides paragraphs
};
struct SubHeading {
  int level = 2;  // 1 to 6
  std::string text;
};
struct FootnoteDefinition {
  std::string label;
  std::vector<std::string> lines;
};
enum class TableAlignment { left, center, right };
struct Table {
  std::vector<std::vector<std::string>> rows;  // the first is the head
  std::vector<TableAlignment> alignments;      // one a column
};
struct CodeBlock {
  std::optional<std::string> language;
  std::vector<std::string> lines;
};
struct Image {
  LKInlineImage image;
};
struct SceneBreak {};

}  // namespace BodyBlocks

using BodyBlock =
    std::variant<BodyBlocks::Prose, BodyBlocks::BulletedList, BodyBlocks::NumberedList,
                 BodyBlocks::BlockQuote, BodyBlocks::SubHeading, BodyBlocks::FootnoteDefinition,
                 BodyBlocks::Table, BodyBlocks::CodeBlock, BodyBlocks::Image,
                 BodyBlocks::SceneBreak>;

namespace LKBindDOCXBuilder {

// With `larkspireNative` every line of prose is a paragraph; with `commonmark` lines that follow each
// other are one, with "<br>" where a line ends in two blanks or a backslash.
std::vector<BodyBlock> parseBodyBlocks(std::string_view body, LKBindParagraphStyle paragraphStyle);

}  // namespace LKBindDOCXBuilder
}  // namespace lk
