#include "LarkspireCLI/Support/CollectionResolver.h"

#include <vector>

#include "LKCore/Collections/LKCollectionStore.h"
#include "LarkspireCLI/Support/CollectionReference.h"

namespace lk::CollectionResolver {

// On a fresh machine the default collection takes part in the lookup without being made; it is
// made when it is what the reference means. So `lk show X --collection FOLDER` leaves no folder
// and no registry behind, and every reference still means what it would mean afterwards.
std::optional<LKCollectionRecord> resolve(const std::string& reference) {
  LKCollectionStore& store = LKCollectionStore::shared();
  std::vector<LKCollectionRecord> records = store.collections();
  const bool isFresh = records.empty();
  if (isFresh) records.push_back(store.plannedDefaultCollection());

  std::vector<CollectionName> names;
  names.reserve(records.size());
  for (const LKCollectionRecord& record : records) {
    names.push_back({record.id, record.name, record.path});
  }
  const auto found = findCollection(names, reference);
  if (!found) return std::nullopt;
  if (!isFresh) return records[*found];
  store.ensureDefaultCollection();
  return store.activeCollection();
}

}  // namespace lk::CollectionResolver
