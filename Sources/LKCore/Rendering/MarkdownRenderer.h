#pragma once

// cmark-gfm with the extensions that notes use.

#include <string>
#include <string_view>

namespace lk::LKMarkdownToHTML {

struct RenderMarkdownOptions {
  bool hardBreaks = false;        // a line's end is a line break
  bool restoresPageTags = false;  // code shows the tags that `neutralisePageTags` changed
};

// Tables, deletions, task lists and bare links; raw HTML stays. When cmark fails, a fragment that
// says so.
std::string renderMarkdown(std::string_view markdown, const RenderMarkdownOptions& options);

}  // namespace lk::LKMarkdownToHTML
