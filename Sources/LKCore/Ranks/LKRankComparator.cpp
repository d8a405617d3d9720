#include "LKCore/Ranks/LKRankComparator.h"

namespace lk::LKRankComparator {

namespace {

struct KeyOfContext {
  std::string operator()(const Tag& tag) const { return tag.path; }
  std::string operator()(const SavedQuery& query) const { return "__query_" + query.id.text(); }
  std::string operator()(const DatabaseView& view) const { return "__dbview_" + view.id.text(); }
  std::string operator()(const AllNotes& /*notes*/) const { return "__all"; }
  std::string operator()(const Untagged& /*notes*/) const { return "__untagged"; }
};

}  // namespace

std::string key(const Context& context) {
  return std::visit(KeyOfContext{}, context);
}

std::weak_ordering compare(const LKNote& a, const LKNote& b, const Context& context) {
  const auto rankA = lookupRank(a, context);
  const auto rankB = lookupRank(b, context);
  if (rankA && rankB) return *rankA <=> *rankB;
  if (rankA) return std::weak_ordering::less;
  if (rankB) return std::weak_ordering::greater;
  if (b.modifiedDate < a.modifiedDate) return std::weak_ordering::less;
  if (a.modifiedDate < b.modifiedDate) return std::weak_ordering::greater;
  return std::weak_ordering::equivalent;
}

std::optional<std::string> lookupRank(const LKNote& note, const Context& context) {
  if (note.tagRanks.empty()) return std::nullopt;
  const std::string whole = key(context);
  const bool isTag = std::holds_alternative<Tag>(context);
  std::optional<std::string_view> path = whole;
  while (path) {
    const auto rank = note.tagRanks.find(std::string(*path));
    if (rank != note.tagRanks.end()) return rank->second;
    path = isTag ? parentTagPath(*path) : std::nullopt;
  }
  return std::nullopt;
}

std::optional<std::string_view> parentTagPath(std::string_view path) {
  const size_t slash = path.rfind('/');
  if (slash == std::string_view::npos) return std::nullopt;
  return path.substr(0, slash);
}

}  // namespace lk::LKRankComparator
