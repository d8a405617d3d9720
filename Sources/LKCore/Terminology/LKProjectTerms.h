#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace lk {

// The words that a collection uses for "project", as every reader of note text sees them.
// Immutable; made once when the words change.
struct LKProjectTermsSnapshot {
  std::string singular = "project";
  std::string plural = "projects";
  std::vector<std::string> previousSingulars;  // lower-cased
  std::vector<std::string> previousPlurals;    // lower-cased

  // The singular, the previous singulars and "project": lower-cased, no repeats, in that order.
  std::vector<std::string> metadataKeywords = {"project"};
  // The plural, the previous plurals and "projects", likewise.
  std::vector<std::string> tagPrefixes = {"projects"};

  // What lets the inline lexer know a keyword by comparing characters alone, made from
  // `metadataKeywords` by `setKeywordTables`. A word that holds whitespace can open nothing, as
  // no word does on a line, and has no entry.
  struct KeywordScalars {
    std::string keyword;
    std::string withColon;  // UTF-8, so that equal bytes are equal scalars

    bool operator==(const KeywordScalars&) const = default;
  };
  std::vector<KeywordScalars> keywordScalars = {{"project", "project:"}};
  std::vector<char32_t> keywordFirstScalars = {U'p'};                             // distinct
  std::vector<std::pair<char32_t, char32_t>> keywordBreakPairs = {{U'p', U'r'}};  // distinct

  // Makes the three tables anew, after `metadataKeywords` was set.
  void setKeywordTables();
};

namespace LKProjectTerms {

// The words of the collection in use, read once from `.config/terminology.json` in the active
// documents directory. A missing or unreadable file means "project" and "projects".
std::shared_ptr<const LKProjectTermsSnapshot> snapshot();

// Forgets the words; the next `snapshot` reads the file again.
void invalidateCache();

}  // namespace LKProjectTerms

}  // namespace lk
