#include "LKCore/DailyNotes/LKNoIndexRegion.h"

#include <algorithm>
#include <optional>

#include "LKCore/Base/Text.h"
#include "LKCore/LexParse/NoIndexMarkers.h"

namespace lk::LKNoIndexRegion {

std::vector<Marker> markers(std::string_view text) {
  constexpr std::string_view kPartOfBoth = "lk:noindex-->";
  std::vector<Marker> found;
  for (size_t hit = text.find(kPartOfBoth); hit != std::string_view::npos;) {
    const size_t lineFeed = text.rfind('\n', hit);
    const TextRange range = {lineFeed == std::string_view::npos ? 0 : lineFeed + 1,
                             std::min(text.find('\n', hit), text.size())};
    const std::string_view line = range.of(text);
    const bool opens = opensNoIndexRegion(line);
    if (opens || closesNoIndexRegion(line)) found.push_back({range, opens});
    hit = text.find(kPartOfBoth, range.end);
  }
  return found;
}

std::vector<TextRange> ranges(std::string_view text) {
  std::vector<TextRange> found;
  std::optional<size_t> start;
  for (const Marker& marker : markers(text)) {
    if (marker.opens && !start) start = marker.line.start;
    if (marker.opens || !start) continue;
    found.push_back({*start, marker.line.end});
    start.reset();
  }
  if (start) found.push_back({*start, text.size()});
  return found;
}

std::string removingRegions(std::string_view text) {
  std::string rest;
  size_t place = 0;
  for (const TextRange& range : ranges(text)) {
    rest.append(text.substr(place, range.start - place));
    place = range.end;
  }
  return rest.append(text.substr(place));
}

bool isOnlyGenerated(std::string_view linkTitle, std::string_view text) {
  const std::string link = std::string("[[").append(linkTitle).append("]]");
  return text::containsIgnoringCase(text, link) &&
         !text::containsIgnoringCase(removingRegions(text), link);
}

}  // namespace lk::LKNoIndexRegion
