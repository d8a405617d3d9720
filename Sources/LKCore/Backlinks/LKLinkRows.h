#pragma once

// How the link rows of a note are kept in step with its body.
//
//     const auto found = LKTagExtractor::extract(note.text);
//     const auto outcome = LKLinkRows::sync(note, note.text, found.dateRefs, found.backlinks,
//                                           context, false);
//     if (outcome.change != LKLinkRows::Change::none) notices::post(kLinkRowsChanged);
//
// A row stands for a reference, however often the body holds it, and keeps it as written. Two
// references are one when they are canonically equal; the keys of the maps below are references
// composed (text::composed). Notes and rows belong to the context that is given.

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include "LKCore/Base/UUID.h"
#include "LKCore/DataModel/LKContext.h"

namespace lk {

// Posted by whoever applies an outcome with a change.
inline constexpr const char* kLinkRowsChanged = "com.larkspire.linkRowsChanged";

namespace LKLinkRows {

using References = std::set<std::string, std::less<>>;

// In rising order of weight.
enum class Change {
  none,
  lines,  // only the stored source line of some row, or its number
  links,  // rows were made, or point elsewhere
};

struct Outcome {
  Change change = Change::none;
  std::set<UUID> targets;  // notes of which an incoming link changed

  bool operator==(const Outcome&) const = default;
};

// Makes the note's rows those of the body's `links` (between "[[" and "]]") and `dateRefs` (eight
// digits), as extracted. A reference in both has two rows. Rows of references that are gone go;
// new ones look for their target, and old ones without a target too when `retryUnresolved` says
// so. Throws LKStoreError.
Outcome sync(LKNote& note, std::string_view body, const References& dateRefs,
             const References& links, LKContext& context, bool retryUnresolved);

// Points rows whose target is gone, or in the trash, to a live note of their reference; a row
// without a replacement stays as it is. `verified` holds targets that the caller knows, `checked`
// references that the caller looked for in vain. At most `caseFallbackLimit` references, in their
// order, are looked for beyond titles of exactly these code points. Gives the old and new targets
// of the rows that changed. A store that fails heals nothing.
std::set<UUID> healTargets(LKNote& note, const References& checked,
                           const std::map<std::string, UUID>& verified, LKContext& context,
                           size_t caseFallbackLimit);

struct ContextLine {
  std::string text;  // trimmed
  int index = 0;     // the line's number, from 0

  bool operator==(const ContextLine&) const = default;
};

// The first line that holds each reference as "[[reference]]", by the reference as given; those
// that stand nowhere are left out. References hold neither "[" nor "]]", as the lexer gives them.
// Lines end at LF, CR and CR LF. Time is linear in the body.
std::map<std::string, ContextLine> contextLines(const References& references,
                                                std::string_view body);

}  // namespace LKLinkRows

}  // namespace lk
