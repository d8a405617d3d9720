#include "LKCore/NoteFiles/LKForeignBlock.h"

#include <algorithm>

#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/NoteBlock.h"

namespace lk {

namespace {

constexpr std::string_view kTitleKey = "title:";

// Takes a line, without its line feed, from the front of the text.
std::string_view takeLine(std::string_view& text) {
  const size_t end = std::min(text.find('\n'), text.size());
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return line;
}

std::string_view unquoted(std::string_view value) {
  const bool isQuoted = value.size() >= 2 && value.front() == value.back() &&
                        (value.front() == '"' || value.front() == '\'');
  return isQuoted ? value.substr(1, value.size() - 2) : value;
}

}  // namespace

StrippedDocument stripForeignFrontMatter(std::string_view text) {
  std::string_view rest = text;
  if (text::trimmed(takeLine(rest)) != kBlockFence) return {{}, std::string(text)};
  std::optional<std::string_view> title;
  while (!rest.empty()) {
    const std::string_view line = takeLine(rest);
    if (text::trimmed(line) == kBlockFence) {
      StrippedDocument stripped{{}, std::string(rest)};
      if (title && !title->empty()) stripped.title = *title;
      return stripped;
    }
    if (!title && line.starts_with(kTitleKey)) {
      title = unquoted(text::trimmed(line.substr(kTitleKey.size())));
    }
  }
  return {{}, std::string(text)};
}

bool hasLarkspireFrontMatterKey(std::string_view text) {
  text = text::trimmed(text);
  if (!text.starts_with(kBlockFence)) return false;
  const NewlinePosition opening = findNewline(text, 0);
  for (size_t start = opening.start + opening.length; start < text.size();) {
    const NewlinePosition newline = findNewline(text, start);
    const std::string_view line = text::trimmed(text.substr(start, newline.start - start));
    if (line == kBlockFence) return false;
    if (line.starts_with("lk-")) return true;
    start = newline.start + newline.length;
  }
  return false;
}

}  // namespace lk
