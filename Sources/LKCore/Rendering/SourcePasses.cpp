#include "LKCore/Rendering/SourcePasses.h"

#include <algorithm>

#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/Text.h"

namespace lk::LKMarkdownToHTML {

namespace {

constexpr std::string_view kPageTags =
    "(title|head|body|html|script|style|meta|link|iframe|base|frame|frameset)\\b";

// Whether the trimmed line is three or more of one mark with spaces between.
bool isThematicBreak(std::string_view line) {
  if (line.size() < 3 || (line.front() != '-' && line.front() != '_' && line.front() != '*')) {
    return false;
  }
  const char allowed[] = {line.front(), ' '};
  return line.find_first_not_of(std::string_view(allowed, 2)) == std::string_view::npos;
}

// Both lines are trimmed and not empty.
bool needsBlankLineBetween(std::string_view before, std::string_view line) {
  return isThematicBreak(line) || (before.starts_with('>') && !line.starts_with('>')) ||
         (line.starts_with('|') && !before.starts_with('|')) || line.starts_with("# ") ||
         (isListItem(line, false) && !isListItem(before, false));
}

}  // namespace

bool isListItem(std::string_view trimmedLine, bool plus) {
  if (trimmedLine.starts_with("- ") || trimmedLine.starts_with("* ")) return true;
  if (trimmedLine.starts_with("+ ")) return plus;
  return !trimmedLine.empty() && text::isDecimalDigit(text::decode(trimmedLine, 0).scalar) &&
         trimmedLine.find(". ") != std::string_view::npos;
}

std::string_view stripFrontMatter(std::string_view text) {
  if (!text.starts_with("---\n") && !text.starts_with("---\r\n")) return text;
  for (const std::string_view closing : {"\n---\n", "\n---\r\n"}) {
    const size_t end = text.find(closing, 4);
    if (end != std::string_view::npos) return text.substr(end + closing.size());
  }
  return text;
}

std::string convertLeadingTabs(std::string_view text) {
  std::string result;
  result.reserve(text.size() + text.size() / 4);
  bool inFence = false;
  std::optional<size_t> base;  // the tabs of the first item of this run of a list
  FootnoteRun footnote;
  const auto append = [&](std::string_view indent, size_t times, std::string_view rest) {
    for (; times > 0; --times) result.append(indent);
    result.append(rest).push_back('\n');
  };
  for (const std::string_view line : text::split(text, '\n')) {
    const std::string_view trimmed = text::trimmed(line);
    const size_t tabs = std::min(line.find_first_not_of('\t'), line.size());
    const std::string_view rest = line.substr(tabs);
    const bool continuesFootnote = !inFence && footnote.continues(line);
    if (isFenceMark(trimmed)) {
      inFence = !inFence;
      append({}, 0, line);
    } else if (inFence) {
      append("    ", tabs, rest);
    } else if (trimmed.empty()) {
      append({}, 0, line);
    } else if (continuesFootnote) {
      append("\t", 1, rest);
    } else if (isListItem(trimmed, true)) {
      if (!base) base = tabs;
      append("    ", tabs - std::min(tabs, *base), rest);
    } else {
      base.reset();
      append({}, 0, rest);
    }
  }
  result.pop_back();  // the last line's end was not there
  return result;
}

std::string ensureBlankLineSeparators(std::string_view text) {
  std::string result;
  result.reserve(text.size() + text.size() / 8);
  bool inFence = false;
  FootnoteRun footnote;
  std::optional<std::string_view> before;  // the line above, trimmed
  for (const std::string_view line : text::split(text, '\n')) {
    const std::string_view trimmed = text::trimmed(line);
    const bool continuesFootnote = footnote.continues(line);
    if (before) {
      if (isFenceMark(*before)) inFence = !inFence;
      const bool isPlain = !inFence && !before->empty() && !trimmed.empty() && !continuesFootnote;
      result.append(isPlain && needsBlankLineBetween(*before, trimmed) ? "\n\n" : "\n");
    }
    result.append(line);
    before = trimmed;
  }
  return result;
}

std::string stripComments(std::string text) {
  std::string result;
  size_t copied = 0;
  for (size_t start = text.find("<!--"); start != std::string::npos;
       start = text.find("<!--", copied)) {
    const size_t end = text.find("-->", start + 4);
    if (end == std::string::npos) break;
    result.append(text, copied, start - copied);
    copied = end + 3;
  }
  if (copied == 0) return text;
  return result.append(text, copied);
}

std::string neutralisePageTags(std::string text) {
  static const Pattern tags("<(/?)" + std::string(kPageTags), Pattern::Case::insensitive);
  if (text.find('<') == std::string::npos) return text;
  return tags.replacingAllByTemplate(text, "&lt;$1$2");
}

std::string restorePageTags(std::string_view code) {
  static const Pattern tags("&lt;(/?)" + std::string(kPageTags), Pattern::Case::insensitive);
  return tags.replacingAllByTemplate(code, "<$1$2");
}

}  // namespace lk::LKMarkdownToHTML
