#pragma once

// Looks for words or a pattern in the bodies of note files, line by line, in any case.
//
//     NoteSearch search("order seeds", NoteSearch::Kind::words, 1);
//     if (const auto found = search.in(fileBytes)) ... found->matches[0].lineNumber ...

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/TextRange.h"
#include "LKCore/Base/Time.h"

namespace lk {

struct MatchLine {
  int lineNumber = 0;  // in the body, from 1
  std::string text;
  std::vector<std::string> context;  // the lines around it, in their order
  int contextBefore = 0;             // how many of them stand before it

  bool operator==(const MatchLine&) const = default;
};

class NoteSearch {
 public:
  enum class Kind { words, pattern };

  // What one file holds.
  struct Found {
    std::vector<MatchLine> matches;
    std::optional<Day> dailyDate;
  };

  // Throws PatternError.
  NoteSearch(const std::string& query, Kind kind, size_t contextLines);

  // The lines of the note's body, or of the whole text when it has no block, that match; nothing
  // when none does or the bytes are not UTF-8. Throws PatternError for a pattern that costs too much.
  std::optional<Found> in(std::string_view file);

  // Where the line matches, left to right. Throws PatternError.
  std::vector<TextRange> rangesIn(std::string_view line);

 private:
  std::vector<TextRange> wordLines(std::string_view body);
  std::vector<TextRange> patternLines(std::string_view body);
  std::vector<MatchLine> matchLines(std::string_view body,
                                    const std::vector<TextRange>& lines) const;

  Kind kind_;
  size_t contextLines_;
  bool isVisibleInFile_;  // the words stand in the file's bytes as they do in the body
  Pattern pattern_;
  PatternSearcher searcher_;
};

}  // namespace lk
