#pragma once

// Tags are paths: "work/clients/acme" lies below "work/clients" and "work".

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "LKCore/Base/Text.h"

namespace lk::tags {

// How long `top` is at the tag's head, where it may stand in another Unicode form; nothing when the
// tag is neither `top` nor below it.
inline std::optional<size_t> lengthOfTop(std::string_view tag, std::string_view top) {
  size_t end = tag.find('/');
  for (auto more = std::ranges::count(top, '/'); more > 0 && end != tag.npos; --more) {
    end = tag.find('/', end + 1);
  }
  const std::string_view head = tag.substr(0, end);
  return text::equal(head, top) ? std::optional(head.size()) : std::nullopt;
}

inline bool isBelow(std::string_view tag, std::string_view ancestor) {
  const auto length = lengthOfTop(tag, ancestor);
  return length && *length < tag.size();
}

// The tag when `from` is called `to`; nothing when it is neither `from` nor below it.
inline std::optional<std::string> renamed(std::string_view tag, std::string_view from,
                                          std::string_view to) {
  const auto length = lengthOfTop(tag, from);
  if (!length) return std::nullopt;
  return std::string(to).append(tag.substr(*length));
}

// The map with other keys. `rename` gives a key's new name or nothing; where a renamed key meets
// one that stays, the one that stays wins.
template <typename Map, typename Rename>
Map withRenamedKeys(const Map& map, const Rename& rename) {
  Map result;
  Map moved;
  for (const auto& [key, value] : map) {
    if (auto name = rename(key)) {
      moved.emplace(std::move(*name), value);
    } else {
      result.emplace(key, value);
    }
  }
  result.merge(moved);
  return result;
}

}  // namespace lk::tags
