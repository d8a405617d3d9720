#include "LKCore/Navigation/LKTaskContextStore.h"

#include <algorithm>
#include <set>

#include "LKCore/Base/Text.h"

namespace lk::LKTaskContextStore {

namespace {

constexpr size_t kShortestWithMatches = 3;  // below it everything is near everything

// A task that names a context twice carries it once.
std::set<std::string> contextsOf(const LKTaskFacts& task) {
  std::set<std::string> result;
  for (const std::string_view context : task.contexts) {
    std::string name = normalised(context);
    if (!name.empty()) result.insert(std::move(name));
  }
  return result;
}

// No fewer edits than scalars that one has more than the other; spares the work on long texts.
size_t leastDistance(std::string_view a, std::string_view b) {
  const size_t countA = text::scalarCount(a);
  const size_t countB = text::scalarCount(b);
  return countA > countB ? countA - countB : countB - countA;
}

}  // namespace

std::string normalised(std::string_view name) {
  std::string result(text::trimmed(name));
  std::ranges::replace_if(
      result, [](char c) { return c == ' ' || c == '\t'; }, '_');
  return text::lowercased(result);
}

std::vector<std::string> allKnownContexts(const LKIndexFacts& facts) {
  std::set<std::string> names;
  for (const LKTaskFacts& task : facts.tasks) names.merge(contextsOf(task));
  std::vector<std::string> result(names.begin(), names.end());
  std::ranges::stable_sort(result, [](const std::string& a, const std::string& b) {
    return text::compareLocalized(a, b) < 0;
  });
  return result;
}

std::map<std::string, size_t> counts(const LKIndexFacts& facts) {
  std::map<std::string, size_t> result;
  for (const LKTaskFacts& task : facts.tasks) {
    if (!task.isActive) continue;
    for (const std::string& context : contextsOf(task)) ++result[context];
  }
  return result;
}

std::vector<std::string> nearMatches(std::string_view name, std::span<const std::string> candidates,
                                     size_t maxDistance) {
  std::vector<std::string> result;
  const std::string wanted = normalised(name);
  if (text::characterEnds(wanted).size() < kShortestWithMatches) return result;
  for (const std::string& candidate : candidates) {
    const std::string other = normalised(candidate);
    if (other == wanted || leastDistance(other, wanted) > maxDistance) continue;
    if (text::editDistance(other, wanted) <= maxDistance) result.push_back(candidate);
  }
  return result;
}

}  // namespace lk::LKTaskContextStore
