#pragma once

// Words in several languages that say, before a colon in a heading, what the section below it is:
//
//     matchKeywordPrefix("Kapítel: Anfang")    // chapter, "Anfang"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Bind/LKBindNoteInput.h"

namespace lk::LKBindRoleKeywords {

struct Row {
  LKBindNoteRole role = LKBindNoteRole::chapter;
  std::vector<std::string_view> keywords;  // lower case, without diacritics
};

const std::array<Row, 5>& table();

// Trimmed, without diacritics, in lower case.
std::string normalise(std::string_view text);

struct Match {
  LKBindNoteRole role = LKBindNoteRole::chapter;
  std::string title;  // what follows the colon, trimmed; may be empty

  bool operator==(const Match&) const = default;
};

// The role that the text of a heading begins with; ":" and "：" both end the keyword.
std::optional<Match> matchKeywordPrefix(std::string_view heading);

// Whether a line begins "# " and a keyword in plain spelling, with or without a colon.
bool bodyUsesRoleKeywords(std::string_view text);

}  // namespace lk::LKBindRoleKeywords
