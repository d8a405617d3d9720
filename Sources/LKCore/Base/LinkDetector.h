#pragma once

// Finds the links that people write without markup: URLs, bare domains, e-mail addresses.
//
//   firstLink("see example.org/a, or ask")   ->  domain, bytes 4 to 17
//
// The rules, chosen so that prose and file names are left alone:
//   url     a scheme (an ASCII letter, then letters, digits, "+", "." and "-"), "://" and a tail;
//           or "mailto:" and an address.
//   email   ASCII letters, digits and ". _ % + -", then "@" and a domain whose last label is two
//           or more letters.
//   domain  two or more labels of ASCII letters, digits and inner hyphens, with the first one
//           "www" or the last one a known top-level domain. Country codes that are better known
//           as file endings (md, sh, py, rs, pl ...) are not known here: "notes.md" is no link.
//           A port and a tail that begins with "/", "?" or "#" may follow.
//   tail    runs to whitespace, a control character, a non-ASCII punctuation mark or one of
//           < > " ` { } | \ ^. A round or square bracket belongs to it only together with its
//           partner and with none of its kind in between; . , ; : ! ? ' * _ ~ do not end it:
//           they belong to the sentence around.
// Time is linear in the text.

#include <optional>
#include <string_view>
#include <vector>

#include "LKCore/Base/TextRange.h"

namespace lk {

enum class LinkKind { url, domain, email };

struct DetectedLink {
  LinkKind kind = LinkKind::url;
  TextRange range;  // UTF-8 bytes

  bool operator==(const DetectedLink&) const = default;
};

// The first link that begins at or after byte `from`, which must be a scalar boundary.
std::optional<DetectedLink> firstLink(std::string_view text, size_t from = 0);

// Every link, left to right, without overlap.
std::vector<DetectedLink> links(std::string_view text);

// True when the first link of `text` is all of it.
bool isValidURL(std::string_view text);

}  // namespace lk
