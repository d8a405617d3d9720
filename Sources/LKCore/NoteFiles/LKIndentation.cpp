#include "LKCore/NoteFiles/LKIndentation.h"

#include <algorithm>

namespace lk {

namespace {

constexpr size_t kBlanksPerTab = 4;

bool isFenceLine(std::string_view fromLineStart) {
  const size_t first = fromLineStart.find_first_not_of(" \t");
  return first != std::string_view::npos && fromLineStart.substr(first).starts_with("```");
}

// Most texts have no such line, and are passed through at the speed of a search.
bool hasLineBeginningWith(std::string_view text, char first) {
  for (size_t start = 0; start < text.size(); ++start) {
    if (text[start] == first) return true;
    start = text.find('\n', start);
    if (start == std::string_view::npos) return false;
  }
  return false;
}

// Puts `count` bytes of `to` for each leading run of `from` outside fences, `count` being what
// `counted` makes of the run's length.
template <typename Counted>
std::string withIndentation(std::string_view text, char from, char to, Counted counted) {
  if (!hasLineBeginningWith(text, from)) return std::string(text);
  std::string result;
  result.reserve(text.size());
  bool isInFence = false;
  size_t copied = 0;
  for (size_t start = 0; start < text.size();) {
    const size_t run = std::min(text.find_first_not_of(from, start), text.size()) - start;
    if (run > 0 && !isInFence) {
      result.append(text.substr(copied, start - copied)).append(counted(run), to);
      copied = start + run;
    }
    if (isFenceLine(text.substr(start))) isInFence = !isInFence;
    start = std::min(text.find('\n', start), text.size() - 1) + 1;
  }
  result.append(text.substr(copied));
  return result;
}

}  // namespace

std::string spacesToTabs(std::string_view text) {
  return withIndentation(text, ' ', '\t', [](size_t blanks) {
    return std::max(blanks, kBlanksPerTab) / kBlanksPerTab;
  });
}

std::string tabsToSpaces(std::string_view text) {
  return withIndentation(text, '\t', ' ', [](size_t tabs) { return tabs * kBlanksPerTab; });
}

}  // namespace lk
