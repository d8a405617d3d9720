#pragma once

// The rows of one table in memory: they stay where they are, keep the order in which they came and
// cost no allocation each. Both stores keep their rows in it; nothing above this folder includes it.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "LKCore/Base/UUID.h"

namespace lk {

template <typename Row>
struct PoolNode : Row {
  uint64_t sequence = 0;  // from 1 in the order of insertion, never used twice
  bool isRemoved = false;
};

// `Node` derives from PoolNode<Row>. A removed node's place is used again later, after a forEach.
template <typename Row, typename Node = PoolNode<Row>>
class RowPool {
 public:
  Node& add(Row row) {
    Node& node = place();
    static_cast<Row&>(node) = std::move(row);
    node.sequence = ++newest_;
    order_.push_back(&node);
    if (hasIDs_) byID_.emplace(node.id, &node);
    return node;
  }

  void remove(Node& node) {
    node = Node{};
    node.isRemoved = true;
    ++removedCount_;
  }

  void clear() {
    for (Node* node : order_) {
      if (!node->isRemoved) remove(*node);
    }
    compact();
  }

  size_t size() const { return order_.size() - removedCount_; }
  uint64_t newest() const { return newest_; }

  // Every row in the order of insertion; `visit` adds and removes none.
  template <typename Visit>
  void forEach(const Visit& visit) {
    if (removedCount_ > order_.size() / 2) compact();
    for (Node* node : order_) {
      if (!node->isRemoved) visit(*node);
    }
  }

  // The rows with these ids, in the order of insertion. Ids are looked at when a row is added and
  // again after `forgetIDs`.
  template <typename Visit>
  void forEachWithID(const std::unordered_set<UUID>& ids, const Visit& visit) {
    if (!hasIDs_) indexIDs();
    std::vector<Node*> found;
    for (const UUID& id : ids) {
      const auto [first, last] = byID_.equal_range(id);
      for (auto entry = first; entry != last; ++entry) {
        if (!entry->second->isRemoved && entry->second->id == id) found.push_back(entry->second);
      }
    }
    std::ranges::sort(found, {}, &Node::sequence);
    for (Node* node : found) visit(*node);
  }

  void forgetIDs() {
    byID_.clear();
    hasIDs_ = false;
  }

 private:
  static constexpr size_t kChunk = 64;

  Node& place() {
    if (!free_.empty()) {
      Node* node = free_.back();
      free_.pop_back();
      node->isRemoved = false;
      return *node;
    }
    if (chunks_.empty() || chunks_.back().size() == kChunk) chunks_.emplace_back().reserve(kChunk);
    return chunks_.back().emplace_back();
  }

  // Takes the removed rows out of the order, after which nothing points to their places.
  void compact() {
    forgetIDs();
    std::vector<Node*> kept;
    kept.reserve(size());
    for (Node* node : order_) (node->isRemoved ? free_ : kept).push_back(node);
    order_ = std::move(kept);
    removedCount_ = 0;
  }

  void indexIDs() {
    forEach([&](Node& node) { byID_.emplace(node.id, &node); });
    hasIDs_ = true;
  }

  std::vector<std::vector<Node>> chunks_;  // each one is reserved once and never grows beyond
  std::vector<Node*> order_;
  std::vector<Node*> free_;
  size_t removedCount_ = 0;
  uint64_t newest_ = 0;
  std::unordered_multimap<UUID, Node*> byID_;
  bool hasIDs_ = false;
};

}  // namespace lk
