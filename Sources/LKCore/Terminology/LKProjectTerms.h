#pragma once

#include <memory>
#include <string>
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
};

namespace LKProjectTerms {

// The words of the collection in use, read once from `.config/terminology.json` in the active
// documents directory. A missing or unreadable file means "project" and "projects".
std::shared_ptr<const LKProjectTermsSnapshot> snapshot();

// Forgets the words; the next `snapshot` reads the file again.
void invalidateCache();

}  // namespace LKProjectTerms

}  // namespace lk
