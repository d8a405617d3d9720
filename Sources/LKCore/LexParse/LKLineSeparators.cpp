#include "LKCore/LexParse/LKLineSeparators.h"

#include <cstddef>

namespace lk::LKLineSeparators {

namespace {

// The length in bytes of the separator at `at`, CR LF being one; 0 where there is none.
size_t separatorLength(std::string_view text, size_t at) {
  const std::string_view rest = text.substr(at);
  if (rest[0] == '\r') return rest.starts_with("\r\n") ? 2 : 1;
  if (rest[0] == '\xC2') return rest.starts_with("\xC2\x85") ? 2 : 0;
  if (rest[0] != '\xE2') return 0;
  return rest.starts_with("\xE2\x80\xA8") || rest.starts_with("\xE2\x80\xA9") ? 3 : 0;
}

size_t firstSeparator(std::string_view text, size_t from) {
  constexpr std::string_view kLeads = "\r\xC2\xE2";
  size_t at = text.find_first_of(kLeads, from);
  while (at != std::string_view::npos && separatorLength(text, at) == 0) {
    at = text.find_first_of(kLeads, at + 1);
  }
  return at;
}

std::string replaced(std::string text, char by) {
  const std::string_view from = text;
  size_t at = firstSeparator(from, 0);
  if (at == std::string_view::npos) return text;
  std::string result;
  result.reserve(from.size());
  size_t done = 0;
  for (; at != std::string_view::npos; at = firstSeparator(from, done)) {
    result.append(from.substr(done, at - done)).push_back(by);
    done = at + separatorLength(from, at);
  }
  return result.append(from.substr(done));
}

}  // namespace

bool containsAny(std::string_view text) {
  return firstSeparator(text, 0) != std::string_view::npos;
}

std::string toSpaces(std::string text) {
  return replaced(std::move(text), ' ');
}

std::string toNewlines(std::string text) {
  return replaced(std::move(text), '\n');
}

}  // namespace lk::LKLineSeparators
