#pragma once

// One line of a note's text: where it stands, what it is, and an identity that edits keep.
//
//   std::vector<Paragraph> paragraphs = makeParagraphs("# Title\n- item");
//   describe(paragraphs[0]);  // "0-8 heading 1"
//
// A paragraph is a plain record. `makeParagraphs` makes the rows of a text; ParagraphPasses.h and
// TableGrouping.h set the flags that depend on other rows. `tag`, `index` and `isLocked` carry no
// rule of their own.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "LKCore/Base/UTF16Text.h"
#include "LKCore/Base/UUID.h"
#include "LKCore/ParagraphModel/ParagraphType.h"

namespace lk {

struct LKTaskDetail;
struct StyledText;

enum class TableRole : uint8_t { none, header, separator, data };

// "none", "header", "separator", "data".
std::string_view roleText(TableRole role);

struct Paragraph {
  // With a fresh id; throws Error when the kernel has no random numbers.
  explicit Paragraph(size_t location, std::optional<std::string> label = std::nullopt);
  Paragraph(const UUID& identity, size_t location, std::optional<std::string> label = std::nullopt);

  UTF16Range range;                // the line with its line end
  int32_t index = 0;               // scratch
  std::optional<std::string> tag;  // the caller's label
  bool inCodeBlock = false;        // between two paired fences
  bool isUnpairedFence = false;    // a fence without a partner
  bool inTable = false;
  bool inComment = false;  // between a comment's opening and closing line
  TableRole tableRole = TableRole::none;
  UUID tableID;        // shared by the rows of one table; nil outside of tables
  int quoteLevel = 0;  // the count of ">" of a block quote; else 0
  ParagraphType type;
  UUID id;
  int tabLevel = 0;  // 0 to 22

  // Tasks among the rows under this one.
  int childTasks = 0;
  int childTasksComplete = 0;
  int childTasksOverDue = 0;

  // The outline.
  bool hasChildren = false;
  bool childrenAreFolded = false;
  bool isLocked = false;

  // Rows are copied whole and few have these two, so copies share them.
  std::shared_ptr<const LKTaskDetail> taskDetail;
  std::optional<std::string> text;             // the line with its line end
  std::shared_ptr<const StyledText> attrText;  // the rendered line, if a renderer is attached

  // The text, or the empty one.
  std::string_view line() const { return text ? std::string_view(*text) : std::string_view(); }

  // A heading at the outermost level.
  bool isHoistable() const { return type.isHeading() && tabLevel == 0; }

  // Identity is what makes two paragraphs equal.
  friend bool operator==(const Paragraph& a, const Paragraph& b) { return a.id == b.id; }
};

// One line for people and tests: the range in UTF-16 units from start to end, the type, and what
// else differs from a plain line, in this order: "level 2", "quote 1", "code", "unpaired",
// "comment", "table header", "children", "folded", "locked".
std::string describe(const Paragraph& paragraph);

}  // namespace lk
