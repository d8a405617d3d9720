#include "LKCore/ParagraphModel/OutlineRecords.h"

#include <array>
#include <utility>

namespace lk {

namespace {

LKListType listTypeOf(const ParagraphType& type) {
  if (type.isTaskState()) return LKListType::task;
  if (type.kind == ParagraphKind::ordered) return LKListType::ordered;
  return type.kind == ParagraphKind::unordered ? LKListType::unordered : LKListType::none;
}

}  // namespace

std::string_view arrayName(ParagraphArrayType type) {
  constexpr std::array<std::string_view, 4> kNames = {"Editor", "Debug", "Deleted", "Unfold"};
  return kNames[static_cast<size_t>(type)];
}

void FoldedSection::setParagraphs(std::vector<Paragraph> paragraphs) {
  paragraphs_ = std::move(paragraphs);
  characters_ = 0;
  for (const Paragraph& paragraph : paragraphs_) characters_ += paragraph.range.length;
}

LKParagraphInfo paragraphInfo(const Paragraph& paragraph) {
  const LKListType listType = listTypeOf(paragraph.type);
  return {.id = paragraph.id,
          .range = paragraph.range,
          .text = std::string(paragraph.line()),
          .headingLevel = paragraph.type.headingLevel(),
          .indentLevel = paragraph.tabLevel,
          .isList = listType != LKListType::none,
          .listType = listType,
          .isFolded = paragraph.childrenAreFolded};
}

}  // namespace lk
