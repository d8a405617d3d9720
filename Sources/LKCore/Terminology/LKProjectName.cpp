#include "LKCore/Terminology/LKProjectName.h"

#include <algorithm>

#include "LKCore/Base/Text.h"

namespace lk::LKProjectName {

bool holdsWhitespace(std::string_view word) {
  for (size_t i = 0; i < word.size();) {
    const text::Decoded d = text::decode(word, i);
    if (text::isWhitespaceOrNewline(d.scalar)) return true;
    i += d.length;
  }
  return false;
}

bool canStandInNote(std::string_view name) {
  return !name.empty() && !holdsWhitespace(name);
}

// Counts levels, since a text may have another length in another case.
std::optional<size_t> offsetBelow(std::string_view path, std::string_view head) {
  size_t slash = path.find('/');
  for (auto deeper = std::ranges::count(head, '/'); deeper > 0; --deeper) {
    if (slash == std::string_view::npos) return std::nullopt;
    slash = path.find('/', slash + 1);
  }
  if (slash == std::string_view::npos) return std::nullopt;
  if (!text::equalIgnoringCase(path.substr(0, slash), head)) return std::nullopt;
  return slash + 1;
}

}  // namespace lk::LKProjectName
