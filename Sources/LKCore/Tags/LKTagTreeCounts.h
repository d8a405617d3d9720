#pragma once

#include <map>
#include <span>
#include <string>
#include <vector>

// How many notes each node of the tag tree has under it.
//
//     nodeCounts({{{"work/plan", "work/talk"}, true}})   // work 1, work/plan 1, work/talk 1
namespace lk::LKTagTreeCounts {

// A note, or what stands for one.
struct Item {
  std::vector<std::string> tags;
  bool counted = true;  // false makes its nodes without counting for them
};

// Deeper levels of a tag count for the node at this level: a tag of a thousand levels would
// otherwise make a thousand long names.
inline constexpr int deepestLevel = 100;

// Path of the node to its count. An item counts once for a node, however many of its tags lie
// under it. Empty levels of a tag are passed over.
std::map<std::string, int> nodeCounts(std::span<const Item> items);

}  // namespace lk::LKTagTreeCounts
