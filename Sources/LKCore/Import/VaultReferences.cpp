#include "LKCore/Import/VaultReferences.h"

#include <algorithm>

#include "LKCore/Import/LKImportText.h"

namespace lk::LKObsidianImporter {

using LKImportEngine::NextOf;

namespace {

constexpr auto kNowhere = std::string_view::npos;

enum class Bar { allowed, required };

// What stands between `opening` and "]]", up to a bar if there is one.
void forEachBracketed(std::string_view line, std::string_view opening, Bar bar,
                      const ReferenceVisit& visit) {
  NextOf closing(line, ']');
  NextOf bars(line, '|');
  for (size_t at = line.find(opening); at != kNowhere;) {
    const size_t start = at + opening.size();
    const size_t close = closing.from(start);
    if (close == kNowhere) return;
    const size_t split = bars.from(start);
    const bool hasBar = split < close;
    const bool isClosed = close + 1 < line.size() && line[close + 1] == ']';
    const bool hasShown = hasBar && split + 1 < close;
    size_t end = hasBar ? split : close;
    const bool fits = isClosed && end > start && (bar == Bar::allowed || hasShown);
    if (!fits) {
      at = line.find(opening, at + 1);
      continue;
    }
    if (hasBar && line[end - 1] == '\\' && end - 1 > start) --end;
    visit({{at, close + 2}, {start, end}});
    at = line.find(opening, close + 2);
  }
}

}  // namespace

void forEachWikiEmbed(std::string_view line, const ReferenceVisit& visit) {
  forEachBracketed(line, "![[", Bar::allowed, visit);
}

void forEachAliasedLink(std::string_view line, const ReferenceVisit& visit) {
  forEachBracketed(line, "[[", Bar::required, visit);
}

void forEachStandardImage(std::string_view line, const ReferenceVisit& visit) {
  static constexpr std::string_view kOpening = "![";
  NextOf closing(line, ']');
  NextOf ends(line, ')');
  for (size_t at = line.find(kOpening); at != kNowhere;) {
    const size_t close = closing.from(at + kOpening.size());
    if (close == kNowhere) return;
    const size_t start = close + 2;
    const bool hasTarget = close + 1 < line.size() && line[close + 1] == '(';
    const size_t end = hasTarget ? ends.from(start) : kNowhere;
    const std::string_view rest = line.substr(std::min(start, line.size()));
    const bool fits = end != kNowhere && end > start && !rest.starts_with("http://") &&
                      !rest.starts_with("https://");
    if (!fits) {
      at = line.find(kOpening, at + 1);
      continue;
    }
    visit({{at, end + 1}, {start, end}});
    at = line.find(kOpening, end + 1);
  }
}

}  // namespace lk::LKObsidianImporter
