#include "LKCore/Tags/LKTagNameRules.h"

#include "LKCore/Base/Text.h"
#include "LKCore/LexParse/CharacterSets.h"

namespace lk::LKTagNameRules {

namespace {

template <typename Test>
bool anyScalar(std::string_view name, Test test) {
  for (size_t i = 0; i < name.size();) {
    const text::Decoded d = text::decode(name, i);
    if (test(d.scalar)) return true;
    i += d.length;
  }
  return false;
}

}  // namespace

std::optional<std::string> problem(std::string_view name) {
  if (name.empty()) return "Enter a name.";
  if (name.starts_with('/') || name.ends_with('/') || name.find("//") != std::string_view::npos) {
    return "Use single slashes between levels, e.g. apple/core-data.";
  }
  if (!text::isLetter(text::decode(name, 0).scalar)) return "A tag must start with a letter.";
  if (anyScalar(name, text::isWhitespaceOrNewline)) return "Tags can’t contain spaces.";
  if (anyScalar(name, [](char32_t scalar) { return !lexing::isTagCharacter(scalar); })) {
    return "Tags can only contain letters, numbers, hyphens and slashes.";
  }
  return std::nullopt;
}

}  // namespace lk::LKTagNameRules
