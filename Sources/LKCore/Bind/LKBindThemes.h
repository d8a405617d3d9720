#pragma once

// Looks of a book beyond its spec: the family of the text, the colours of headings, links, code and
// tables. A theme never touches sizes, spaces or the page, which belong to the bind spec.

#include <array>
#include <string>
#include <string_view>

namespace lk::LKBindThemes {

struct Descriptor {
  std::string_view id;
  std::string_view displayName;

  bool operator==(const Descriptor&) const = default;
};

inline constexpr std::array<Descriptor, 4> all = {{{"manuscript", "Manuscript"},
                                                   {"github", "GitHub"},
                                                   {"swiss", "Swiss"},
                                                   {"academic", "Academic"}}};

// The sheet, headed by the theme's name; empty for "manuscript" and for an id that is not known.
std::string css(std::string_view id);

// The name of the theme that `css` gives.
std::string_view displayName(std::string_view id);

}  // namespace lk::LKBindThemes
