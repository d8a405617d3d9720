#pragma once

// The index that one run builds and throws away: the rows are all there is. Every part of a note is
// there from the start, and saving cannot fail.
//
//     std::unique_ptr<LKContext> index = makeMemoryStore();
//     index->notes().insert(LKNote("Groceries", "- [ ] Milk"));

#include <memory>

#include "LKCore/DataModel/LKContext.h"

namespace lk {

std::unique_ptr<LKContext> makeMemoryStore();

}  // namespace lk
