#include "Support/SlowReading.h"

#include <string_view>

#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/Text.h"

namespace lk::test {

namespace {

// Lines by their numbers; those of closed fences are empty.
std::vector<std::string> unfencedLines(const std::string& text) {
  // Behind blanks, but for a tab.
  static const Pattern fence(R"(^(?:\h*[^\S\t])?```)");
  std::vector<std::string> lines;
  std::vector<size_t> fences;
  for (const std::string_view line : text::splitLines(text)) {
    if (fence.matches(line)) fences.push_back(lines.size());
    lines.emplace_back(line);
  }
  for (size_t i = 0; i + 1 < fences.size(); i += 2) {
    for (size_t line = fences[i]; line <= fences[i + 1]; ++line) lines[line].clear();
  }
  return lines;
}

}  // namespace

SlowReading slowReading(const std::string& text) {
  // What hides a link, then the link: the leftmost wins, as when one reads.
  static const Pattern marks(
      R"(``|`[^`]*`|<!--.*?-->|!\[[^\]]*\](?=\()|\[\^[^\[\]]+\]|\[\[((?:(?!\]\])[^\[])+)\]\]|(?<!\[)\[[^\]]+\](?=\()|(?<=\])\([^)]+\))");
  static const Pattern task(R"(^\h*- \[([ xX/-])\](?: |$))");
  SlowReading reading;
  int number = 0;
  for (const std::string& line : unfencedLines(text)) {
    for (const auto& match : marks.findAll(line)) {
      if (match[1]) reading.backlinks.emplace(match[1]->of(line));
    }
    if (const auto match = task.find(line))
      reading.tasks.emplace_back(number, line[match->at(1)->start]);
    ++number;
  }
  return reading;
}

}  // namespace lk::test
