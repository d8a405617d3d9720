#pragma once

// Rewrites a note's body when a word for projects or a project's name changes.
//
// A body names a project as a tag under the plural word, anywhere, or as a token on a task line:
//
//     rename("#projects/acme\n- [ ] Call project:acme", "acme", "Nimbus", false, terms)
//     gives  "#projects/Nimbus\n- [ ] Call project:Nimbus" and one hit of each kind
//
// Names, prefixes and keywords are found in any case, earlier words too, and what is written has
// the words in use, which are lower-cased. Fenced code is left alone, and so is every byte outside
// the hits. A name that is empty or holds whitespace cannot stand in a note: with one, the text
// comes back as it is; ask LKProjectName::canStandInNote first.
//
// All text is valid UTF-8. Nothing here throws or reads a file, and time is linear in the text.

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "LKCore/Base/TextRange.h"
#include "LKCore/Terminology/LKProjectTerms.h"

namespace lk::LKProjectTextRewrite {

struct Counts {
  size_t tagHits = 0;
  size_t metaHits = 0;  // tokens on task lines

  bool operator==(const Counts&) const = default;
};

struct Rewritten {
  std::string text;
  Counts counts;

  bool operator==(const Rewritten&) const = default;
};

// What `strip` removes.
struct StripTaskMeta {
  std::optional<size_t> paragraphIndex;  // only on this line of the body, from 0; else on all
};
struct StripAll {};       // tags and tokens
struct StripBodyTags {};  // tags outside task lines
using StripScope = std::variant<StripTaskMeta, StripAll, StripBodyTags>;

// Every earlier prefix and keyword replaced by the one in use, names kept. A second time changes
// nothing more.
Rewritten reterm(std::string_view text, const LKProjectTermsSnapshot& terms);

// Every tag and token of the old name given the new one. Without `includeSubtree` "acme/site" is
// no hit of "acme"; with it the path below is kept.
Rewritten rename(std::string_view text, std::string_view oldName, std::string_view newName,
                 bool includeSubtree, const LKProjectTermsSnapshot& terms);

// Tags and tokens of exactly these names removed. The text may begin with a front matter between
// `---` lines, which stays; lines of the body are counted as they are when the note is open. The
// blank before a removed word goes too, or the blank after it where only indentation or the mark
// of a list or a task stands before, so that the mark and the level of the line stay.
Rewritten strip(std::string_view text, std::span<const std::string> names, const StripScope& scope,
                const LKProjectTermsSnapshot& terms);

// The name after the rename, or nothing when it is not concerned. Names are the same in any case.
//
//     renameProjectName("acme/site", "acme", "nimbus", true) gives "nimbus/site"
std::optional<std::string> renameProjectName(std::string_view name, std::string_view from,
                                             std::string_view to, bool includeSubtree);

// The same for a tag's text, without "#", under any of the words; its prefix is kept.
std::optional<std::string> renameProjectTagText(std::string_view tagText, std::string_view from,
                                                std::string_view to, bool includeSubtree,
                                                const LKProjectTermsSnapshot& terms);

// Applies `transform` to each stretch of lines outside fenced code, and adds up the counts. The
// stretches are views into `text`.
Rewritten transformOutsideCodeBlocks(std::string_view text,
                                     const std::function<Rewritten(std::string_view)>& transform);

// What continues a name, so that no hit ends before it: the second set where a path may not go on
// either. Letters, marks and digits beyond ASCII always do.
inline constexpr std::string_view kNameContinuation =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
inline constexpr std::string_view kPathContinuation =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_/";

// True when the text ends at byte `at` or goes on there with a character outside the set.
bool isBoundary(std::string_view text, size_t at, std::string_view continuationSet);

struct Removal {
  std::string text;
  size_t hits = 0;
};

// Removes all ranges that `find` gives, in any order, with one blank each as `strip` says.
Removal boundaryRemove(std::string_view text,
                       const std::function<std::vector<TextRange>(std::string_view)>& find);

}  // namespace lk::LKProjectTextRewrite
