#pragma once

// The words that a collection uses for "project". A collection may call them clients or areas,
// and then writes `client:acme` and `#clients/acme`. Words that it used before still read.
//
// They live in `.config/terminology.json` of the active documents directory, which every process
// of the user shares:
//
//     {
//       "plural" : "clients",
//       "previousPlurals" : ["areas"],
//       "previousSingulars" : ["area"],
//       "singular" : "client"
//     }
//
// Keys that this version does not know stay in the file.

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "LKCore/Base/Error.h"

namespace lk {

// Posted after the words were changed or forgotten.
inline constexpr const char* kTerminologyChanged = "com.larkspire.terminologyChanged";

// Words that cannot be used; the description is the message of `validate`.
class LKProjectTermsError : public Error {
 public:
  static LKProjectTermsError invalid(std::string message);

 private:
  using Error::Error;
};

// The words as every reader of note text sees them. Immutable; made once when they change.
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

  // The project that a tag names, in the tag's own case; nothing for a tag of another kind. The
  // tag comes without its "#".
  //
  //     projectName("Projects/Acme/site") gives "Acme/site"
  std::optional<std::string> projectName(std::string_view tagText) const;

  // The byte offset at which that name begins in the tag.
  std::optional<size_t> projectNameOffset(std::string_view tagText) const;
};

namespace LKProjectTerms {

// The words of the collection in use, read at the first call. A missing or unreadable file means
// "project" and "projects". From any thread; another active collection brings its own words.
std::shared_ptr<const LKProjectTermsSnapshot> snapshot();

// Forgets the words, so that the next `snapshot` reads the file again, and posts
// kTerminologyChanged.
void invalidateCache();

// What is wrong with the two words, as a sentence, or nothing when they may be used. Blanks around
// a word do not count.
std::optional<std::string> validate(std::string_view singular, std::string_view plural);

// Makes these the words, keeps the ones before as previous words and posts kTerminologyChanged.
// The notes still hold the old words, which `LKProjectTextRewrite::reterm` replaces. Throws
// LKProjectTermsError for words that do not validate, and FileError.
void update(std::string_view singular, std::string_view plural);

}  // namespace LKProjectTerms

}  // namespace lk
