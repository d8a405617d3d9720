#pragma once

#include <string>
#include <string_view>

namespace lk {

// The Markdown with an empty line between lines of prose, so that each one is a paragraph of its
// own, as in the editor. Lists, quotes, tables, code, footnotes and HTML keep their lines together.
// Linear in the text.
std::string proseLinesAsParagraphs(std::string_view markdown);

}  // namespace lk
