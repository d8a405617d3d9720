// Footnotes, which cmark would render in another form.

#include <map>

#include "LKCore/Base/Text.h"
#include "LKCore/Rendering/HTMLText.h"
#include "LKCore/Rendering/SourcePasses.h"

namespace lk::LKMarkdownToHTML {

namespace {

struct Footnote {
  std::string_view label;
  std::vector<std::string_view> lines;
};

struct SplitText {
  std::vector<std::string_view> kept;          // the lines outside of definitions
  std::vector<Footnote> notes;                 // the first of each label, in the order of the text
  std::map<std::string_view, size_t> numbers;  // of each label, from 1
};

SplitText withoutDefinitions(std::string_view text) {
  SplitText result;
  Footnote* open = nullptr;
  Footnote repeated;  // where the lines of a label's later definitions go
  bool inFence = false;
  for (const std::string_view line : text::split(text, '\n')) {
    if (open != nullptr && line.starts_with('\t')) {
      open->lines.push_back(line.substr(1));
      continue;
    }
    open = nullptr;
    if (isFenceMark(line)) inFence = !inFence;
    const auto definition = inFence ? std::nullopt : footnoteDefinition(line);
    if (!definition) {
      result.kept.push_back(line);
      continue;
    }
    const size_t number = result.notes.size() + 1;
    const bool isNew = result.numbers.emplace(definition->label, number).second;
    open = isNew ? &result.notes.emplace_back() : &repeated;
    open->label = definition->label;
    open->lines = {definition->content};
  }
  return result;
}

void appendWithReferences(std::string& result, std::string_view line, const SplitText& notes) {
  size_t copied = 0;
  for (size_t start = line.find("[^"); start != std::string_view::npos;) {
    const size_t end = line.find(']', start + 2);
    if (end == std::string_view::npos) break;
    const auto number = notes.numbers.find(line.substr(start + 2, end - start - 2));
    if (number != notes.numbers.end()) {
      const std::string label = html::escaped(number->first);
      result.append(line.substr(copied, start - copied));
      result.append(R"(<sup class="footnote-ref"><a href="#fn-)").append(label);
      result.append(R"(" id="fnref-)").append(label).append("\">");
      result.append(std::to_string(number->second)).append("</a></sup>");
      copied = end + 1;
    }
    start = line.find("[^", end);
  }
  result.append(line.substr(copied));
}

void appendSection(std::string& result, const std::vector<Footnote>& notes) {
  result.append("\n\n<section class=\"footnotes\">\n<hr>\n<ol>\n");
  for (const Footnote& note : notes) {
    const std::string label = html::escaped(note.label);
    result.append("<li id=\"fn-").append(label).append("\"><p>");
    for (size_t i = 0; i < note.lines.size(); ++i) {
      if (i > 0) result.append("<br>\n");
      result.append(replaceInlineMarkdown(
          preprocessLine(std::string(note.lines[i]), SharingOptions::preview())));
    }
    result.append(" <a href=\"#fnref-").append(label);
    result.append("\" class=\"footnote-backref\">↩</a></p></li>\n");
  }
  result.append("</ol>\n</section>\n");
}

}  // namespace

std::optional<FootnoteDefinition> footnoteDefinition(std::string_view line) {
  if (!line.starts_with("[^")) return std::nullopt;
  const size_t end = line.find(']', 2);
  if (end == std::string_view::npos || end == 2 || !line.substr(end + 1).starts_with(':')) {
    return std::nullopt;
  }
  return FootnoteDefinition{line.substr(2, end - 2), text::trimmedLeading(line.substr(end + 2))};
}

bool FootnoteRun::continues(std::string_view line) {
  const bool doesContinue = isOpen_ && line.starts_with('\t');
  isOpen_ = doesContinue || footnoteDefinition(line);
  return doesContinue;
}

std::string preprocessFootnotes(std::string text) {
  if (text.find("[^") == std::string::npos) return text;
  const SplitText split = withoutDefinitions(text);
  if (split.notes.empty()) return text;
  std::string result;
  result.reserve(text.size() + text.size() / 2);
  bool inFence = false;
  for (size_t i = 0; i < split.kept.size(); ++i) {
    const std::string_view line = split.kept[i];
    if (isFenceMark(line)) inFence = !inFence;
    if (i > 0) result.push_back('\n');
    if (inFence) {
      result.append(line);
    } else {
      appendWithReferences(result, line, split);
    }
  }
  appendSection(result, split.notes);
  return result;
}

}  // namespace lk::LKMarkdownToHTML
