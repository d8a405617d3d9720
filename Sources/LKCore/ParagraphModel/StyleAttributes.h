#pragma once

// A rendered line, as a renderer outside of this library makes it, and the lists that the renderer
// draws from it. What each list selects is the renderer's business; here each is worked out when
// it is first asked for, and kept.

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "LKCore/Base/UTF16Text.h"

namespace lk {

struct StyledText {
  struct Run {
    UTF16Range range;
    std::map<std::string, std::string> attributes;

    bool operator==(const Run&) const = default;
  };

  std::string text;
  std::vector<Run> runs;

  bool operator==(const StyledText&) const = default;
};

// Confined to one thread.
class StyleAttributes {
 public:
  using Ranges = std::vector<UTF16Range>;
  using RangePairs = std::vector<std::pair<UTF16Range, UTF16Range>>;
  using Runs = std::vector<StyledText::Run>;

  // Gives a list for a text that stands `offset` UTF-16 units into its document.
  template <typename List>
  using Selector = std::function<List(const StyledText& styled, size_t offset)>;

  // The renderer's part; the list of a missing selector is empty.
  struct Selectors {
    Selector<Ranges> styleRanges = {};
    Selector<Ranges> illegalRanges = {};
    Selector<Ranges> wordRanges = {};
    Selector<Ranges> validWordRanges = {};
    Selector<RangePairs> rangePairs = {};
    Selector<Runs> attributeRuns = {};
  };

  StyleAttributes(StyledText styled, size_t offset, Selectors selectors)
      : styled_(std::move(styled)), offset_(offset), selectors_(std::move(selectors)) {}

  const StyledText& styled() const { return styled_; }
  size_t offset() const { return offset_; }

  const Ranges& styleRanges() { return list(styleRanges_, selectors_.styleRanges); }
  const Ranges& illegalRanges() { return list(illegalRanges_, selectors_.illegalRanges); }
  const Ranges& wordRanges() { return list(wordRanges_, selectors_.wordRanges); }
  const Ranges& validWordRanges() { return list(validWordRanges_, selectors_.validWordRanges); }
  const RangePairs& rangePairs() { return list(rangePairs_, selectors_.rangePairs); }
  const Runs& attributeRuns() { return list(attributeRuns_, selectors_.attributeRuns); }

 private:
  template <typename List>
  const List& list(std::optional<List>& kept, const Selector<List>& select) {
    if (!kept) kept = select ? select(styled_, offset_) : List();
    return *kept;
  }

  StyledText styled_;
  size_t offset_ = 0;
  Selectors selectors_;
  std::optional<Ranges> styleRanges_;
  std::optional<Ranges> illegalRanges_;
  std::optional<Ranges> wordRanges_;
  std::optional<Ranges> validWordRanges_;
  std::optional<RangePairs> rangePairs_;
  std::optional<Runs> attributeRuns_;
};

}  // namespace lk
