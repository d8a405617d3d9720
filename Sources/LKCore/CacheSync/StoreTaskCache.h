#pragma once

#include "LKCore/Base/Clock.h"
#include "LKCore/DataModel/LKContext.h"
#include "LKCore/Tasks/LKTaskCache.h"

namespace lk {

// The task cache over the store of one collection. Each update is saved at once, and the note's
// task counters follow. Everything throws LKStoreError.
//
//     StoreTaskCache cache(context);
//     LKTaskFileSurgeon surgeon(&cache);
class StoreTaskCache : public LKTaskCache {
 public:
  // The context must outlive the cache.
  explicit StoreTaskCache(LKContext& context, Clock clock = Instant::now);

  std::optional<std::filesystem::path> urlOfNote(const UUID& noteID) override;
  // The store has one collection, whatever the id says.
  std::optional<Place> placeOfTask(const UUID& noteID, const UUID& taskID,
                                   const UUID& collectionID) override;

  void updateStatus(const UUID& taskID, TaskStatus status,
                    std::optional<Instant> dateCompleted) override;
  void updateDue(const UUID& taskID, std::optional<Day> due) override;
  void updatePriority(const UUID& taskID, int raw) override;
  // Without a name the task has that of its note's tags, if they name one.
  void updateProject(const UUID& taskID, const std::optional<std::string>& name) override;
  void updateText(const UUID& taskID, const std::string& text) override;

 private:
  template <typename Change>
  void update(const UUID& taskID, Change change);

  LKContext& context_;
  Clock clock_;
};

}  // namespace lk
