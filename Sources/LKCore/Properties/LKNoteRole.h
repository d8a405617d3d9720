#pragma once

// The roles that a note can have in a manuscript, by the names that stand in its property
// "manuscript-role".

#include <array>
#include <string_view>

namespace lk {

inline constexpr std::array<std::string_view, 9> kNoteRoleNames = {
    "chapter", "part", "scene", "book", "title-page", "front-matter", "end-matter", "plain", "skip",
};

}  // namespace lk
