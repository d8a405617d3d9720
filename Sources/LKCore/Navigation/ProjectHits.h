#pragma once

// Where a note's text names projects: the search under LKProjectTextRewrite, nobody else's. What
// changes other words of task lines shares `taskMarkLength` with it.
//
// A tag is `#` prefix `/` name, anywhere. A token is keyword `:` name, behind a space on a task
// line, where the inline lexer finds it too. Prefixes and keywords match in any case. Each search
// is linear in the text for words and names of ordinary length.

#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "LKCore/Base/TextRange.h"
#include "LKCore/Terminology/LKProjectTerms.h"

namespace lk {

// The words that can stand in a note, the ones in use first; views into the snapshot.
struct ProjectWords {
  explicit ProjectWords(const LKProjectTermsSnapshot& terms);

  std::vector<std::string_view> tagPrefixes;
  std::vector<std::string_view> keywords;
};

struct ProjectHit {
  enum class Kind { tag, token };

  Kind kind = Kind::tag;
  TextRange range;             // from the "#" or the keyword to the end of the name
  bool isCurrentWord = false;  // the prefix or keyword is the one in use
  bool isOnTaskLine = false;
};

// Where the name that is looked for ends, if it begins at `nameStart`. `line` is the text up to
// the end of the line. Nothing is no hit.
using ProjectNameEnd = std::function<std::optional<size_t>(std::string_view line, size_t nameStart,
                                                           ProjectHit::Kind kind)>;

// The hits in their order; none overlaps another.
std::vector<ProjectHit> findProjectHits(std::string_view text, const ProjectWords& words,
                                        const ProjectNameEnd& nameEnd);

// Where `wanted` ends if the text at `at` spells it, in any case and whether accents are composed
// or not. A run of letters matches as a whole or not at all: "acmes" does not spell "acme".
std::optional<size_t> spelledEnd(std::string_view text, size_t at, std::string_view wanted);

// The length of a task's mark with its indentation at the start of the line, e.g. "\t- [ ] ", as
// the inline lexer reads it; 0 for any other line.
size_t taskMarkLength(std::string_view line);

// The stretches of whole lines outside fenced code, without the line feeds beside a fence. Lines
// that begin, after blanks, with three backticks are paired two by two; one without a partner
// protects nothing.
std::vector<TextRange> stretchesOutsideFences(std::string_view text);

}  // namespace lk
