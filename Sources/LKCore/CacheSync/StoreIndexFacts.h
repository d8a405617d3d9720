#pragma once

#include <string_view>
#include <vector>

#include "LKCore/DataModel/LKContext.h"
#include "LKCore/Navigation/LKIndexFacts.h"

namespace lk {

// What a context tells the registries of projects and contexts: its notes outside the trash.
//
//     const StoreIndexFacts facts(context);
//     LKProjectStore::shared().allKnownNames(facts.facts());
//
// The views are good as long as this, the context and its rows.
class StoreIndexFacts {
 public:
  // Throws LKStoreError.
  explicit StoreIndexFacts(LKContext& context);
  StoreIndexFacts(const StoreIndexFacts&) = delete;
  StoreIndexFacts& operator=(const StoreIndexFacts&) = delete;

  LKIndexFacts facts() const { return {notes_, tasks_}; }

 private:
  void add(const LKNote& note);
  void add(const LKTask& task);

  std::vector<std::vector<std::string_view>> texts_;  // what the records' lists point to
  std::vector<LKNoteFacts> notes_;
  std::vector<LKTaskFacts> tasks_;
};

}  // namespace lk
