#include "LKCore/Bind/LKBindRoleKeywords.h"

#include <algorithm>
#include <map>

#include "LKCore/Base/Text.h"

namespace lk::LKBindRoleKeywords {

namespace {

using RolesByKeyword = std::map<std::string, LKBindNoteRole, std::less<>>;

// Folding takes some scripts apart, so the table goes through it like the text.
const RolesByKeyword& foldedTable() {
  static const RolesByKeyword roles = [] {
    RolesByKeyword result;
    for (const Row& row : table()) {
      for (const std::string_view keyword : row.keywords) {
        result.emplace(normalise(keyword), row.role);
      }
    }
    return result;
  }();
  return roles;
}

bool isKeyword(std::string_view word) {
  const auto holdsWord = [&](const Row& row) {
    return std::ranges::find(row.keywords, word) != row.keywords.end();
  };
  return std::ranges::any_of(table(), holdsWord);
}

}  // namespace

const std::array<Row, 5>& table() {
  static const std::array<Row, 5> rows = {{
      {LKBindNoteRole::frontMatter, {"front", "vorspann", "avant", "inicio", "前", "앞", "voor"}},
      {LKBindNoteRole::part, {"part", "teil", "partie", "parte", "部", "부", "deel"}},
      {LKBindNoteRole::chapter,
       {"chapter", "kapitel", "chapitre", "capitulo", "章", "장", "hoofdstuk"}},
      {LKBindNoteRole::endMatter,
       {"back", "anhang", "annexe", "final", "後", "后", "뒤", "achter"}},
      {LKBindNoteRole::skip,
       {"skip", "uberspringen", "ignorer", "omitir", "除外", "跳过", "제외", "overslaan"}},
  }};
  return rows;
}

std::string normalise(std::string_view text) {
  return text::folded(text::trimmed(text));
}

std::optional<Match> matchKeywordPrefix(std::string_view heading) {
  static constexpr std::string_view kWideColon = "：";
  const size_t colon = heading.find(':');
  const size_t wide = heading.find(kWideColon);
  const size_t end = std::min(colon, wide);
  if (end == std::string_view::npos) return std::nullopt;
  const size_t rest = end + (end == wide ? kWideColon.size() : 1);
  const auto role = foldedTable().find(normalise(heading.substr(0, end)));
  if (role == foldedTable().end()) return std::nullopt;
  return Match{role->second, std::string(text::trimmed(heading.substr(rest)))};
}

bool bodyUsesRoleKeywords(std::string_view text) {
  for (const std::string_view line : text::split(text, '\n')) {
    const std::string_view trimmed = text::trimmed(line);
    if (!trimmed.starts_with("# ")) continue;
    const std::string_view heading = trimmed.substr(2);
    if (isKeyword(text::lowercased(text::trimmed(heading.substr(0, heading.find(':')))))) {
      return true;
    }
  }
  return false;
}

}  // namespace lk::LKBindRoleKeywords
