#pragma once

// The passes over a note's Markdown before cmark reads it, in their order. LKMarkdownToHTML.h tells
// the whole; `stripFrontMatter`, `convertLeadingTabs` and `ensureBlankLineSeparators` stand there.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/TextRange.h"
#include "LKCore/Base/UUID.h"
#include "LKCore/Rendering/LKMarkdownToHTML.h"

namespace lk::LKMarkdownToHTML {

// Without HTML comments; one that never ends stays.
std::string stripComments(std::string text);

// The tags of a page become text: "<script>" is "&lt;script>".
std::string neutralisePageTags(std::string text);
// The reverse, for code, which shows what it holds anyway.
std::string restorePageTags(std::string_view code);

// "> [!NOTE] ..." and its lines as a box of HTML.
std::string preprocessAdmonitions(std::string text);

// Admonitions, then line by line the states of tasks, the markers of their identifiers and
// `preprocessLine`.
std::string preprocessCustomSyntax(std::string text, const SharingOptions& options,
                                   const std::vector<UUID>& taskIDs);

// The dialect within one line: links, tags, dates, words of tasks, highlights.
std::string preprocessLine(std::string line, const SharingOptions& options);

// Emphasis, deletion and code in text that cmark will not see.
std::string replaceInlineMarkdown(std::string text);

// References as numbers, definitions as a section at the end. Fences are left alone.
std::string preprocessFootnotes(std::string text);

// A line of a list once it is trimmed: "- ", "* ", with `plus` "+ ", or a digit and ". " somewhere.
bool isListItem(std::string_view trimmedLine, bool plus);

// A line that opens or closes a fence.
inline bool isFenceMark(std::string_view line) {
  return line.starts_with("```");
}

// A title in double brackets; the range is the whole of it, in UTF-8 bytes.
struct WikiLink {
  TextRange range;
  std::string_view title;
};
std::optional<WikiLink> nextWikiLink(std::string_view line, size_t from);

// "[^label]: content"
struct FootnoteDefinition {
  std::string_view label;
  std::string_view content;
};
std::optional<FootnoteDefinition> footnoteDefinition(std::string_view line);

// Shown every line in turn, tells which ones continue a definition: those with a leading tab that
// follow it without another line between.
class FootnoteRun {
 public:
  bool continues(std::string_view line);

 private:
  bool isOpen_ = false;
};

}  // namespace lk::LKMarkdownToHTML
