#include "LKCore/CacheSync/StoreIndexFacts.h"

namespace lk {

StoreIndexFacts::StoreIndexFacts(LKContext& context) {
  const auto rows =
      context.notes().fetch({.where = notTrashed(), .parts = LKParts::tags | LKParts::taskLines});
  for (const LKNote* note : rows) {
    add(*note);
    for (const LKTask* task : note->tasks) add(*task);
  }
}

void StoreIndexFacts::add(const LKNote& note) {
  std::vector<std::string_view>& tags = texts_.emplace_back();
  for (const LKTag* tag : note.tags) tags.emplace_back(tag->text);
  notes_.push_back({tags});
}

void StoreIndexFacts::add(const LKTask& task) {
  const auto& contexts = texts_.emplace_back(task.contexts.begin(), task.contexts.end());
  const std::string_view project = task.project ? std::string_view(*task.project) : "";
  tasks_.push_back({project, task.projectIsInherited, contexts, !task.isComplete});
}

}  // namespace lk
