#pragma once

// Text from outside on its way into a note: reading it, and the rewriting that importers share.
// All text but the bytes that `decoded` takes is UTF-8.
//
//     appendTagToBody("Words\n", "my tag") == "Words\n\n#my-tag\n"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Error.h"

namespace lk::LKImportEngine {

// What cannot be imported, and in its description why, for a person.
class ImportRefusal : public Error {
 public:
  using Error::Error;
};

inline constexpr uint64_t maxTextBytes = uint64_t{5} * 1024 * 1024;
inline constexpr size_t maxTextCharacters = 5'000'000;  // Unicode scalars

// The bytes as UTF-8 without a byte order mark, or else as Mac OS Roman, with line feeds alone.
// Nothing for what is neither: text of another encoding that says so by its mark, and what is no
// UTF-8 and holds NUL bytes.
std::optional<std::string> decoded(std::string_view bytes);

// Throws ImportRefusal for text that is blank or too large.
void requireUsableText(std::string_view text);

// Every run of line feeds becomes one, and the ends are trimmed.
std::string collapseMarkdownParagraphs(std::string_view body);

// The tag as it may stand in a note: "-" in place of every character that no tag holds, and single
// slashes between levels only. May be empty, and may begin with another character than a letter.
std::string readableTag(std::string_view tag);

// The body with the tag on a last line of its own. A tag that comes to nothing is left out.
std::string appendTagToBody(std::string_view body, std::string_view tag);
// The same with all of the tags on that line.
std::string appendTagsToBody(std::string_view body, const std::vector<std::string>& tags);
// The same with a line for each tag, as `appendTagToBody` makes them one after the other.
std::string appendTagLinesToBody(std::string_view body, const std::vector<std::string>& tags);

// Every tag of the text, outside fenced code, below the prefix, which ends in a slash.
std::string prefixInlineTags(std::string_view body, std::string_view prefix);

// The value without one pair of matching single or double quotes around it.
std::string_view stripYAMLQuotes(std::string_view value);

// The bytes that "%41" and the like stand for; what is no such escape, or would not be UTF-8,
// stays as it is.
std::string percentDecoded(std::string_view text);

// The text line by line: `rewrite` adds to the result what becomes of each line outside fenced
// code, given without its line feed. A fence is a line that begins, trimmed, with three backticks;
// fences and what is between them stay as they are.
using LineRewrite = std::function<void(std::string_view line, std::string& result)>;
std::string rewriteOutsideFences(std::string_view text, const LineRewrite& rewrite);

// Where a character stands next, asked from ever later places: many askers that find the same far
// place pay for one search.
class NextOf {
 public:
  NextOf(std::string_view text, char c) : text_(text), c_(c) {}

  // The first place at or after `start`, npos for none. `start` never decreases.
  size_t from(size_t start) {
    if (!isSearched_ || (place_ != std::string_view::npos && place_ < start)) {
      isSearched_ = true;
      place_ = text_.find(c_, start);
    }
    return place_;
  }

 private:
  std::string_view text_;
  char c_;
  bool isSearched_ = false;
  size_t place_ = 0;
};

}  // namespace lk::LKImportEngine
