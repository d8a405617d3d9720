// What a snapshot of the words can tell; reading them from the disk is next door.

#include <algorithm>

#include "LKCore/Base/Text.h"
#include "LKCore/Terminology/LKProjectName.h"
#include "LKCore/Terminology/LKProjectTerms.h"

namespace lk {

namespace {

template <typename Value>
void appendDistinct(std::vector<Value>& list, const Value& value) {
  if (std::ranges::find(list, value) == list.end()) list.push_back(value);
}

}  // namespace

void LKProjectTermsSnapshot::setKeywordTables() {
  keywordScalars.clear();
  keywordFirstScalars.clear();
  keywordBreakPairs.clear();
  for (const std::string& keyword : metadataKeywords) {
    if (!LKProjectName::canStandInNote(keyword)) continue;
    const std::string withColon = keyword + ":";
    const text::Decoded first = text::decode(withColon, 0);
    const text::Decoded second = text::decode(withColon, first.length);
    keywordScalars.push_back({keyword, withColon});
    appendDistinct(keywordFirstScalars, first.scalar);
    appendDistinct(keywordBreakPairs, {first.scalar, second.scalar});
  }
}

std::optional<size_t> LKProjectTermsSnapshot::projectNameOffset(std::string_view tagText) const {
  for (const std::string& prefix : tagPrefixes) {
    const auto offset = LKProjectName::offsetBelow(tagText, prefix);
    if (offset && *offset < tagText.size()) return offset;
  }
  return std::nullopt;
}

std::optional<std::string> LKProjectTermsSnapshot::projectName(std::string_view tagText) const {
  const auto offset = projectNameOffset(tagText);
  return offset ? std::optional<std::string>(tagText.substr(*offset)) : std::nullopt;
}

}  // namespace lk
