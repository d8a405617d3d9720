#include "LKCore/Tags/LKTagTreeCounts.h"

#include <set>

#include "LKCore/Base/Text.h"

namespace lk::LKTagTreeCounts {

namespace {

std::set<std::string> nodesOf(const Item& item) {
  std::set<std::string> nodes;
  for (const std::string& tag : item.tags) {
    std::string node;
    int level = 0;
    for (const std::string_view part : text::split(tag, '/')) {
      if (part.empty()) continue;
      if (++level > deepestLevel) break;
      if (!node.empty()) node.push_back('/');
      nodes.insert(node.append(part));
    }
  }
  return nodes;
}

}  // namespace

std::map<std::string, int> nodeCounts(std::span<const Item> items) {
  std::map<std::string, int> counts;
  for (const Item& item : items) {
    for (const std::string& node : nodesOf(item)) counts[node] += item.counted ? 1 : 0;
  }
  return counts;
}

}  // namespace lk::LKTagTreeCounts
