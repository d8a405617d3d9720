// Any two lines as ranks: whatever is placed between them, above or below them is there.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "LKCore/NoteFiles/LKRank.h"
#include "LKCore/Ranks/LKManualSortDrop.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

void check(const std::optional<std::string>& lo, const std::optional<std::string>& hi) {
  const auto rank = lk::LKManualSortDrop::rankAt(lo, hi);
  if (!rank) return;
  require(!lo || *lo < *rank);
  require(!hi || *rank < *hi);
}

bool isOurs(std::string_view rank) {
  return rank.size() > 5 && rank.find('_') == rank.size() - 5 &&
         rank.find_first_not_of("0123456789abcdefghijklmnopqrstuvwxyz_") == std::string_view::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const size_t line = std::min(text.find('\n'), text.size());
  const std::string lo(text.substr(0, line));
  const std::string hi(text.substr(std::min(line + 1, text.size())));
  check(lo, hi);
  check(std::nullopt, hi);
  check(lo, std::nullopt);
  // Behind a rank of ours there is always room.
  if (isOurs(lo)) require(lk::LKManualSortDrop::rankAt(lo, std::nullopt).has_value());
  return 0;
}
