#pragma once

// The order that people gave to the notes of a list. Each list has its own ranks, told apart by a key
// in the notes' `tagRanks`:
//
//     compare(a, b, Tag{"work/garden"})   // the ranks for "work/garden", else those for "work"

#include <compare>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "LKCore/Base/UUID.h"
#include "LKCore/DataModel/Entities.h"

namespace lk::LKRankComparator {

struct Tag {
  std::string path;
};
struct SavedQuery {
  UUID id;
};
struct DatabaseView {
  UUID id;
};
struct AllNotes {};
struct Untagged {};

using Context = std::variant<Tag, SavedQuery, DatabaseView, AllNotes, Untagged>;

// Under which a note keeps its rank for the list.
std::string key(const Context& context);

// `less` when `a` comes first: by rank, notes without one behind all others and among themselves the
// one changed last first.
std::weak_ordering compare(const LKNote& a, const LKNote& b, const Context& context);

// The note's rank. For a tag it may be that of a tag above, so that a note that was ranked there
// keeps its place below.
std::optional<std::string> lookupRank(const LKNote& note, const Context& context);

// The path before the last "/"; nothing for a tag at the top.
std::optional<std::string_view> parentTagPath(std::string_view path);

}  // namespace lk::LKRankComparator
