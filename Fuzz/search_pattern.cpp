// Searching with any words or pattern in any file: it ends, and every line it names is a line of
// the text that the words, looked for alone, are on.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/Text.h"
#include "LarkspireCLI/Support/NoteSearch.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

void search(const std::string& query, lk::NoteSearch::Kind kind, std::string_view file) {
  try {
    lk::NoteSearch search(query, kind, 2);
    const auto found = search.in(file);
    if (!found) return;
    int last = 0;
    for (const lk::MatchLine& match : found->matches) {
      require(match.lineNumber > last);
      last = match.lineNumber;
      require(match.context.size() <= 4);
      // An empty match has no range.
      if (kind == lk::NoteSearch::Kind::words && !query.empty() && !query.ends_with('\r')) {
        require(!search.rangesIn(match.text).empty());
      }
    }
  } catch (const lk::PatternError&) {
    // A pattern that is none, or that takes too long.
  }
}

}  // namespace

// The first line is the query, the rest the file.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const size_t end = std::min(input.find('\n'), input.size());
  const std::string query(input.substr(0, end));
  const std::string_view file = input.substr(std::min(end + 1, input.size()));
  if (!lk::text::isValidUTF8(query)) return 0;
  search(query, lk::NoteSearch::Kind::words, file);
  search(query, lk::NoteSearch::Kind::pattern, file);
  return 0;
}
