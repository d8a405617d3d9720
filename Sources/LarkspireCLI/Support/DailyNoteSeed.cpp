#include "LarkspireCLI/Support/DailyNoteSeed.h"

#include "LKCore/Collections/LKSharedDefaults.h"
#include "LKCore/DailyNotes/DailyNoteBlocks.h"
#include "LKCore/DailyNotes/LKDailyNoteService.h"
#include "LKCore/Platform/Files.h"
#include "LarkspireCLI/Support/CacheReader.h"

namespace lk {

std::string dailyNoteSeedBody(Day day) {
  const DailySeed seed = dailySeed(LKSharedDefaults::dailyNoteSeedRawValue());
  const bool listsTasks = seed != DailySeed::blank;
  const bool listsNotes = seed == DailySeed::overdueTasksAndActivity;
  CacheReader cache(LKDailyNoteService::taskSectionParts);
  return LKDailyNoteService::startingBody(
      day, seed, listsTasks ? cache.fetchTasks() : std::vector<LKTask*>(),
      listsNotes ? cache.fetchNotes() : std::vector<LKNote*>(), "\n\n");
}

std::string dailyNoteSeedBodyIfMissing(Day day, const std::filesystem::path& collection) {
  const bool isThere = nameIsTaken(LKDailyNoteService::dailyNoteURL(day, collection));
  return isThere ? std::string() : dailyNoteSeedBody(day);
}

}  // namespace lk
