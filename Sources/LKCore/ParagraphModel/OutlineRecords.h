#pragma once

// The records around the rows of an open note: what is hidden, what an edit replaced, and what an
// outsider may see of a row.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/UTF16Text.h"
#include "LKCore/Base/UUID.h"
#include "LKCore/ParagraphModel/Paragraph.h"

namespace lk {

// The stores of paragraphs, for diagnostics.
enum class ParagraphArrayType : uint8_t { editor, debug, deleted, unfold };

// "Editor", "Debug", "Deleted", "Unfold".
std::string_view arrayName(ParagraphArrayType type);

// The rows that a fold hides, in order, under the parent whose id the section bears.
class FoldedSection {
 public:
  explicit FoldedSection(const UUID& parent) : id_(parent) {}

  const UUID& id() const { return id_; }
  const std::vector<Paragraph>& paragraphs() const { return paragraphs_; }
  void setParagraphs(std::vector<Paragraph> paragraphs);
  // The length of the hidden text in UTF-16 units.
  size_t characters() const { return characters_; }

 private:
  UUID id_;
  std::vector<Paragraph> paragraphs_;
  size_t characters_ = 0;
};

// What stands aside while one section is shown as if it were the whole text.
struct HoistState {
  explicit HoistState(const UUID& root) : rootID(root) {}

  UUID rootID;
  std::vector<Paragraph> prefixParagraphs;  // the rows before the section
  std::vector<Paragraph> suffixParagraphs;  // the rows after it
  size_t prefixCharCount = 0;               // UTF-16 units
  size_t suffixCharCount = 0;
  std::vector<FoldedSection> stashedFoldedSections;  // the folds within those rows
};

// What an edit replaced.
struct ParagraphChange {
  UTF16Range changedRange;
  std::vector<Paragraph> oldParagraphs;
};

enum class LKListType : uint8_t { none, unordered, ordered, task };

// A row as outsiders see it.
struct LKParagraphInfo {
  UUID id;
  UTF16Range range;
  std::string text;
  int headingLevel = 0;  // 0 for no heading
  int indentLevel = 0;
  bool isList = false;
  LKListType listType = LKListType::none;
  bool isFolded = false;

  bool operator==(const LKParagraphInfo&) const = default;
};

LKParagraphInfo paragraphInfo(const Paragraph& paragraph);

}  // namespace lk
