#pragma once

// What kind of line a paragraph is.

#include <cstdint>
#include <string>

namespace lk {

enum class ParagraphKind : uint8_t {
  heading,  // number: 1 to 6
  ordered,  // number: the list number
  unordered,
  blockQuote,
  task,
  doneTask,
  inProgressTask,
  cancelledTask,
  isEmpty,  // nothing but whitespace
  codeBlockFence,
  tableRow,
  horizontalRule,
  footnoteDefinition,
  htmlCommentOpen,
  htmlCommentClose,
  undefined,  // plain text
};

struct ParagraphType {
  ParagraphKind kind = ParagraphKind::undefined;
  int64_t number = 0;  // see ParagraphKind; else 0

  bool isHeading() const { return kind == ParagraphKind::heading; }
  int headingLevel() const { return isHeading() ? static_cast<int>(number) : 0; }
  // True for the four kinds of task.
  bool isTaskState() const {
    return kind >= ParagraphKind::task && kind <= ParagraphKind::cancelledTask;
  }

  bool operator==(const ParagraphType&) const = default;
};

// One word and, for the kinds that have one, the number: "heading 2", "task".
std::string describe(const ParagraphType& type);

}  // namespace lk
