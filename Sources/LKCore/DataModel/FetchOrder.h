#pragma once

#include <algorithm>
#include <vector>

#include "LKCore/DataModel/LKFetch.h"

namespace lk {

// Sorts by the orders of the fetch, the first one first, and cuts to its limit. Rows that tie keep
// their places.
template <typename Row, typename Node>
void orderAndCut(std::vector<Node*>& rows, const LKFetch<Row>& what) {
  if (!what.order.empty()) {
    std::ranges::stable_sort(rows, [&](const Node* a, const Node* b) {
      for (const LKSort<Row>& sort : what.order) {
        const int result = sort.compare(*a, *b);
        if (result != 0) return sort.order == LKOrder::ascending ? result < 0 : result > 0;
      }
      return false;
    });
  }
  if (what.limit && *what.limit < rows.size()) rows.resize(*what.limit);
}

}  // namespace lk
