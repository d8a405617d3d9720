#pragma once

// Text inside HTML, and the tags that the passes over finished HTML look for.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "LKCore/Base/TextRange.h"

namespace lk::html {

// For text and for values in quotes: & < > " and ' as references.
std::string escaped(std::string_view text);

// The reverse, and "&#x27;" too; any other reference stays.
std::string unescaped(std::string_view text);

// As unescaped, with every numeric reference ("&#58;", "&#x3A;") as its scalar.
std::string decoded(std::string_view text);

inline bool isSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

// Without white space of ASCII at both ends.
std::string_view trimmed(std::string_view text);

// One tag and one attribute of it, in UTF-8 bytes of the HTML.
struct TagMatch {
  TextRange whole;   // with both brackets
  TextRange before;  // from the blank behind the name to the attribute
  TextRange value;   // within the quotes
  TextRange after;   // from the second quote to the bracket
};

// The first "<img" tag at or after `from` with the attribute (written `src="`) and a value that
// `accepts` takes. Looking for all of them is linear in the HTML.
std::optional<TagMatch> nextImage(std::string_view html, std::string_view attribute,
                                  bool (*accepts)(std::string_view value), size_t from);

// The HTML with what `rewritten(tag)` gives in the place of such images; nothing leaves one alone.
template <typename Rewritten>
std::string rewriteImages(std::string_view html, std::string_view attribute,
                          bool (*accepts)(std::string_view value), const Rewritten& rewritten) {
  std::string result;
  result.reserve(html.size());
  size_t copied = 0;
  for (auto tag = nextImage(html, attribute, accepts, 0); tag;
       tag = nextImage(html, attribute, accepts, tag->whole.end)) {
    const std::optional<std::string> replacement = rewritten(*tag);
    if (!replacement) continue;
    result.append(html.substr(copied, tag->whole.start - copied)).append(*replacement);
    copied = tag->whole.end;
  }
  return result.append(html.substr(copied));
}

}  // namespace lk::html
