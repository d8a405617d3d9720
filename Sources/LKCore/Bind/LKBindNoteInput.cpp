#include "LKCore/Bind/LKBindNoteInput.h"

#include <algorithm>
#include <array>
#include <utility>

#include "LKCore/Base/Text.h"

namespace lk {

namespace {

constexpr std::array<std::pair<LKBindNoteRole, std::string_view>, 9> kRoleNames = {{
    {LKBindNoteRole::chapter, "chapter"},
    {LKBindNoteRole::part, "part"},
    {LKBindNoteRole::scene, "scene"},
    {LKBindNoteRole::book, "book"},
    {LKBindNoteRole::titlePage, "title-page"},
    {LKBindNoteRole::frontMatter, "front-matter"},
    {LKBindNoteRole::endMatter, "end-matter"},
    {LKBindNoteRole::plain, "plain"},
    {LKBindNoteRole::skip, "skip"},
}};

}  // namespace

std::string_view rawValue(LKBindNoteRole role) {
  return std::ranges::find(kRoleNames, role, &decltype(kRoleNames)::value_type::first)->second;
}

std::optional<LKBindNoteRole> LKBindNoteRoles::parse(std::string_view value) {
  const std::string name = text::lowercased(text::trimmed(value));
  if (name == "chapters") return LKBindNoteRole::book;
  const auto* const role =
      std::ranges::find(kRoleNames, name, &decltype(kRoleNames)::value_type::second);
  if (role == kRoleNames.end()) return std::nullopt;
  return role->first;
}

}  // namespace lk
