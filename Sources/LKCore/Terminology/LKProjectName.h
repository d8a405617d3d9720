#pragma once

// What a name of a project is to everything that reads or writes one: text without whitespace,
// its levels divided by "/", the same name in any case.

#include <cstddef>
#include <optional>
#include <string_view>

namespace lk::LKProjectName {

// True when a blank or a line end stands anywhere in the word.
bool holdsWhitespace(std::string_view word);

// True when the name can stand in a note: it is not empty and holds no whitespace, at which a
// token or tag would end.
bool canStandInNote(std::string_view name);

// The byte offset in `path` of what follows `head` and a "/", in any case of `head`; the path's
// size when nothing follows. Nothing when the path does not begin so.
//
//     offsetBelow("Acme/site", "acme") == 5
std::optional<size_t> offsetBelow(std::string_view path, std::string_view head);

}  // namespace lk::LKProjectName
