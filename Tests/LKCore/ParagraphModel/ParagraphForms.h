#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/ParagraphModel/LKTableData.h"
#include "LKCore/ParagraphModel/MakeParagraphs.h"

namespace lk::testing {

// The described paragraphs without their ranges, joined by " | ".
inline std::string formOf(std::span<const Paragraph> paragraphs) {
  std::string form;
  for (const Paragraph& paragraph : paragraphs) {
    const std::string all = describe(paragraph);
    form.append(form.empty() ? "" : " | ").append(all.substr(all.find(' ') + 1));
  }
  return form;
}

// The indices of the rows of each table, from its header on.
inline std::vector<std::vector<size_t>> tablesOf(std::span<const Paragraph> paragraphs) {
  std::vector<std::vector<size_t>> tables;
  for (size_t i = 0; i < paragraphs.size(); ++i) {
    if (paragraphs[i].tableRole == TableRole::header) tables.emplace_back();
    if (paragraphs[i].inTable) tables.back().push_back(i);
  }
  return tables;
}

inline std::optional<LKTableData> firstTable(std::string_view text) {
  const std::vector<Paragraph> paragraphs = makeParagraphs(text);
  const auto tables = tablesOf(paragraphs);
  if (tables.empty()) return std::nullopt;
  return LKTableData::parse(paragraphs, tables[0], UTF16Text(text));
}

}  // namespace lk::testing
