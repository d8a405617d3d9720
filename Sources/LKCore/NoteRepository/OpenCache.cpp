#include "LKCore/NoteRepository/OpenCache.h"

#include <mutex>
#include <string>
#include <utility>

#include "LKCore/Base/Log.h"
#include "LKCore/CacheSync/LKTaskCacheSync.h"
#include "LKCore/NoteFiles/LKContentHash.h"

namespace lk {

namespace {

struct CacheFinder {
  std::mutex mutex;
  FindOpenCache find;
};

CacheFinder& cacheFinder() {
  static CacheFinder instance;
  return instance;
}

LKContext* openCacheOf(const std::filesystem::path& url) {
  FindOpenCache find;
  {
    const std::lock_guard guard(cacheFinder().mutex);
    find = cacheFinder().find;
  }
  return find ? find(url) : nullptr;
}

template <typename Update>
void withOpenCache(const std::filesystem::path& url, Update update) {
  try {
    if (LKContext* const context = openCacheOf(url)) update(*context);
  } catch (const std::exception& error) {
    log::warning("the index did not take " + url.string() + ": " + error.what());
  }
}

}  // namespace

void setOpenCache(FindOpenCache find) {
  const std::lock_guard guard(cacheFinder().mutex);
  cacheFinder().find = std::move(find);
}

void updateTasksInCache(const std::filesystem::path& url, const UUID& noteID, std::string_view body,
                        const std::vector<TaskEntry>& taskEntries) {
  withOpenCache(url, [&](LKContext& context) {
    LKTaskCacheSync::syncTasks(noteID, body, taskEntries, context);
  });
}

void updateFlagsInCache(const std::filesystem::path& url, const LKFileFrontMatter& frontMatter,
                        std::string_view file) {
  withOpenCache(url, [&](LKContext& context) {
    const auto notes = context.notes().fetch({.where = notesWithID(frontMatter.id), .limit = 1});
    if (notes.empty()) return;
    LKNote& note = *notes.front();
    note.isFavourite = frontMatter.isFavourite;
    note.status = blockStatus(frontMatter);
    note.userProperties = frontMatter.userProperties;
    note.tagRanks = frontMatter.tagRanks;
    note.fileDigest = computeRawDigest(file);
    context.save();
  });
}

}  // namespace lk
