#pragma once

#include <filesystem>

#include "LKCore/DataModel/LKContext.h"
#include "LKCore/Tags/LKTagCache.h"
#include "LKCore/Tags/LKTagIconStore.h"

namespace lk {

// The tag cache over the store of one collection. Each change is saved at once. Everything throws
// LKStoreError.
//
//     StoreTagCache cache(context, collection);
//     LKTagRewriter::removeOrphanedTags(cache, LKTagIconStore(collection));
class StoreTagCache : public LKTagCache {
 public:
  // The context must outlive the cache; the folder is that of the collection.
  StoreTagCache(LKContext& context, const std::filesystem::path& collection);

  std::optional<Note> note(const UUID& id) override;
  // Brings tasks, links, pictures, counters and the content's hash in step with the text too.
  void setNote(const UUID& id, const Note& note) override;

  std::vector<std::string> tags() override;
  size_t noteCount(const std::string& tag) override;
  void removeTag(const std::string& tag) override;

 private:
  void setTags(LKNote& note, const std::set<std::string, std::less<>>& tags);
  LKTag& tagNamed(const std::string& text);

  LKContext& context_;
  std::filesystem::path attachments_;
  LKTagIconStore icons_;
};

}  // namespace lk
