// Replacing by templates, which needs nothing of the engine.

#include "LKCore/Base/Pattern.h"

namespace lk {

namespace {

void appendExpanded(std::string& result, std::string_view replacement, std::string_view text,
                    const Pattern::Match& match) {
  for (size_t i = 0; i < replacement.size(); ++i) {
    const char c = replacement[i];
    const char next = i + 1 < replacement.size() ? replacement[i + 1] : '\0';
    if (c == '$' && next >= '0' && next <= '9') {
      const auto group = static_cast<size_t>(next - '0');
      if (group < match.size() && match[group]) result.append(match[group]->of(text));
      ++i;
    } else if (c == '\\' && i + 1 < replacement.size()) {
      result.push_back(next);
      ++i;
    } else {
      result.push_back(c);
    }
  }
}

}  // namespace

std::string Pattern::replacingAllByTemplate(std::string_view text,
                                            std::string_view replacement) const {
  std::string result;
  size_t start = 0;
  for (const Match& match : findAll(text)) {
    result.append(text.substr(start, match[0]->start - start));
    appendExpanded(result, replacement, text, match);
    start = match[0]->end;
  }
  return result.append(text.substr(start));
}

std::string Pattern::escapedTemplate(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (c == '$' || c == '\\') result.push_back('\\');
    result.push_back(c);
  }
  return result;
}

}  // namespace lk
