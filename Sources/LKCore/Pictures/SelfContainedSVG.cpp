#include "LKCore/Pictures/SelfContainedSVG.h"

#include <algorithm>
#include <array>
#include <string>

namespace lk {

namespace {

bool isSVGSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

// Calls `accepts` with what follows each mark, up to the first one that it refuses.
template <typename Accepts>
bool everyPlace(std::string_view text, std::string_view mark, const Accepts& accepts) {
  for (size_t at = text.find(mark); at != std::string_view::npos; at = text.find(mark, at + 1)) {
    if (!accepts(text.substr(at + mark.size()))) return false;
  }
  return true;
}

std::string_view withoutSpaceAndQuote(std::string_view text) {
  const size_t start = text.find_first_not_of(" \t\r\n\"'");
  return text.substr(std::min(start, text.size()));
}

// An attribute of an event: a blank, "on", letters, "=".
bool hasHandler(std::string_view text) {
  return !everyPlace(text, "on", [&](std::string_view rest) {
    const size_t place = static_cast<size_t>(rest.data() - text.data()) - 2;
    if (place == 0 || !isSVGSpace(text[place - 1])) return true;
    size_t end = 0;
    while (end < rest.size() && end < 32 && rest[end] >= 'a' && rest[end] <= 'z') ++end;
    while (end < rest.size() && isSVGSpace(rest[end]) && end < 64) ++end;
    return end >= rest.size() || rest[end] != '=';
  });
}

}  // namespace

bool isSelfContainedSVG(std::string_view svg) {
  std::string lower(svg);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  }
  constexpr std::array<std::string_view, 7> kRefused = {
      "<script", "<!entity", "<!doctype", "<foreignobject", "<iframe", "@import", "<?xml-style"};
  const std::string_view text = lower;
  for (const std::string_view mark : kRefused) {
    if (text.find(mark) != std::string_view::npos) return false;
  }
  if (hasHandler(text)) return false;
  const bool areLinksOwn = everyPlace(text, "href", [](std::string_view rest) {
    const size_t value = rest.find_first_not_of(" \t\r\n");
    if (value == std::string_view::npos || rest[value] != '=') return true;
    const std::string_view target = withoutSpaceAndQuote(rest.substr(value + 1));
    return target.starts_with('#') || target.starts_with("data:image/png") ||
           target.starts_with("data:image/jpeg") || target.starts_with("data:image/gif");
  });
  return areLinksOwn && everyPlace(text, "url(", [](std::string_view rest) {
           return withoutSpaceAndQuote(rest).starts_with('#');
         });
}

}  // namespace lk
