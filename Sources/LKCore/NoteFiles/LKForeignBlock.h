#pragma once

// Blocks between `---` lines that other programs put at the head of a Markdown file.

#include <optional>
#include <string>
#include <string_view>

namespace lk {

struct StrippedDocument {
  std::optional<std::string> title;  // never empty
  std::string body;

  bool operator==(const StrippedDocument&) const = default;
};

// The text without its block, and the title that the block's first line beginning with `title:`
// gives, less one pair of quotes around it. A text without a closed block comes back as it is.
//
//     stripForeignFrontMatter("---\ntitle: \"Plan\"\n---\nText") gives "Plan" and "Text"
StrippedDocument stripForeignFrontMatter(std::string_view text);

// True when the text, after whitespace, begins with `---` and a line before the closing `---`
// begins with "lk-": the block is one of ours, whole or damaged.
bool hasLarkspireFrontMatterKey(std::string_view text);

}  // namespace lk
