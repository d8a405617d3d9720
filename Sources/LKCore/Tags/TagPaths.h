#pragma once

// Tags are paths: "work/clients/acme" lies below "work/clients" and "work".

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace lk::tags {

inline bool isBelow(std::string_view tag, std::string_view ancestor) {
  return tag.size() > ancestor.size() && tag.starts_with(ancestor) && tag[ancestor.size()] == '/';
}

// The tag when `from` is called `to`; nothing when it is neither `from` nor below it.
inline std::optional<std::string> renamed(std::string_view tag, std::string_view from,
                                          std::string_view to) {
  if (tag != from && !isBelow(tag, from)) return std::nullopt;
  return std::string(to).append(tag.substr(from.size()));
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
