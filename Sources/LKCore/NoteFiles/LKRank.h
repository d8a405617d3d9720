#pragma once

// The ranks that keep notes in an order made by hand. A rank is a body, "_" and a suffix:
//
//     i_3fa0     body: one or more of 0-9a-z, suffix: four random digits of 0-9a-f
//
// Ranks compare as plain strings. One note moves by one new rank, and nothing is renumbered: there is
// mostly a body between two bodies. Two devices that choose the same body still have different
// ranks, by their suffixes, so the order is total everywhere. "_" stands between the digits and the
// letters, so "i5_..." comes before "i_..." and "ia_..." behind it; what `between` adds to a whole
// body therefore begins with a letter where it can.
//
//     between("a_0000", "c_0000")   // "b_" and a suffix
//
// A rank from an older file may lack the suffix: it is all body. Ranks from files can hold anything;
// every function gives something for them, and whoever places a note checks that it fits.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace lk::LKRank {

// For an empty list.
std::string first();

// Just above the rank, and just below it. There must be room below (`canInsertBefore`).
std::string after(std::string_view rank);
std::string before(std::string_view rank);

// Between the two, which `canPlaceBetween` must hold for.
std::string between(std::string_view lo, std::string_view hi);

// Whether the body of `lo` is below that of `hi`: between equal bodies there is none.
bool canPlaceBetween(std::string_view lo, std::string_view hi);

// Whether the body has a character other than "0".
bool canInsertBefore(std::string_view rank);

// "_" and four random hexadecimal digits.
std::string suffix();

// Ascending ranks for a whole list, with like room between all of them.
std::vector<std::string> spread(size_t count);

}  // namespace lk::LKRank
