#pragma once

// A line of Markdown as the stretches it is made of, for writers of other documents than HTML.
//
//     markdownInlines("**A** [b](https://c.example)")
//     // text "A" strong; text " "; text "b" with the link "https://c.example"
//
// Read by cmark as renderMarkdown does, as the inside of one paragraph: no sign at its start makes
// anything else of it. Footnotes, highlights and links between notes are none of its business.

#include <string>
#include <string_view>
#include <vector>

namespace lk {

struct MarkdownInline {
  enum class Kind { text, code, lineBreak, html, image };

  Kind kind = Kind::text;
  std::string text;  // of HTML the tag as it is written, of an image its alt
  bool isStrong = false;
  bool isEmphasized = false;
  bool isDeleted = false;
  std::string link = {};    // of the link around it; empty: none
  std::string source = {};  // of an image

  bool operator==(const MarkdownInline&) const = default;
};

// For one line of valid UTF-8 without a line feed. Linear; nothing throws.
std::vector<MarkdownInline> markdownInlines(std::string_view line);

}  // namespace lk
