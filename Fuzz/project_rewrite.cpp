// Any bytes as a body: the rewriters keep valid text valid and fenced code as it was, count what
// they did, and have nothing left to do the second time.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/Navigation/LKProjectTextRewrite.h"
#include "LKCore/Navigation/ProjectHits.h"

namespace {

namespace rewrite = lk::LKProjectTextRewrite;

void require(bool holds) {
  if (!holds) std::abort();
}

lk::LKProjectTermsSnapshot clientTerms() {
  lk::LKProjectTermsSnapshot made;
  made.metadataKeywords = {"client", "übung", "project"};
  made.tagPrefixes = {"clients", "work/areas", "projects"};
  made.setKeywordTables();
  return made;
}

// What stands between the stretches that may be rewritten.
std::vector<std::string> fencedText(std::string_view text) {
  std::vector<std::string> fenced;
  size_t from = 0;
  for (const lk::TextRange& stretch : lk::stretchesOutsideFences(text)) {
    require(from <= stretch.start && stretch.start <= stretch.end && stretch.end <= text.size());
    fenced.emplace_back(text.substr(from, stretch.start - from));
    from = stretch.end;
  }
  fenced.emplace_back(text.substr(from));
  return fenced;
}

void requireHarmless(std::string_view before, const rewrite::Rewritten& after) {
  require(!lk::text::isValidUTF8(before) || lk::text::isValidUTF8(after.text));
  if (after.counts == rewrite::Counts{}) require(after.text == before);
}

// A removed word may bare a new fence; what was fenced still stands there, in order.
void requireFencesKept(std::string_view before, std::string_view after) {
  size_t from = 0;
  for (const std::string& fenced : fencedText(before)) {
    from = after.find(fenced, from);
    require(from != std::string_view::npos);
    from += fenced.size();
  }
}

void checkRename(std::string_view text, bool includeSubtree) {
  const auto terms = clientTerms();
  const auto renamed = rewrite::rename(text, "acme", "Nimbus", includeSubtree, terms);
  requireHarmless(text, renamed);
  require(fencedText(renamed.text) == fencedText(text));
  require(rewrite::rename(renamed.text, "acme", "Nimbus", includeSubtree, terms).text ==
          renamed.text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto terms = clientTerms();
  checkRename(text, false);
  checkRename(text, true);

  const auto current = rewrite::reterm(text, terms);
  requireHarmless(text, current);
  require(fencedText(current.text) == fencedText(text));
  require(rewrite::reterm(current.text, terms) == rewrite::Rewritten{current.text, {}});

  const std::vector<std::string> names = {"acme", "ACMÉ", "a.b"};
  for (const rewrite::StripScope& scope :
       {rewrite::StripScope(rewrite::StripAll{}), rewrite::StripScope(rewrite::StripBodyTags{}),
        rewrite::StripScope(rewrite::StripTaskMeta{1})}) {
    const auto stripped = rewrite::strip(text, names, scope, terms);
    requireHarmless(text, stripped);
    require(stripped.text.size() <= text.size());
    if (text.find("---") == std::string_view::npos) requireFencesKept(text, stripped.text);
  }
  return 0;
}
