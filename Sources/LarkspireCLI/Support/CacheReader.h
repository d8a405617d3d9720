#pragma once

// The notes of a collection as commands read them: from the application's index when it may be
// read, otherwise from an index that this run builds from the note files.
//
//     CacheReader cache(LKParts::tags);
//     for (const LKNote* note : cache.fetchNotes()) ...
//
// Nothing happens before the first question, so a command that may not need an index makes a
// reader all the same. The application's store is opened read-only. A store that cannot be opened
// or read counts as none: that is said once on standard error, and the files answer. Nothing here
// throws, and rows stay valid as long as the reader lives.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "LKCore/DataModel/LKContext.h"
#include "LarkspireCLI/Support/AppIndexAccess.h"

namespace lk {

struct ResolvedNote;

class CacheReader {
 public:
  // An index built from the files, and how it stands with the application's data.
  struct Files {
    AppIndexAccess::Access access = AppIndexAccess::Access::missing;
  };
  struct AppIndex {};
  struct None {};
  using Source = std::variant<None, Files, AppIndex>;

  // Rows come with these parts, and possibly with more.
  explicit CacheReader(LKParts parts) : parts_(parts) {}

  // The index; null when there is none and none can be built. The file index is built once a run,
  // and anew only when a reader wants parts that it has not. Its making is told once on standard
  // error with how to be faster, unless the run is quiet.
  LKContext* container();
  Source source();
  // The store that is read, while the application's index is the source.
  std::optional<std::string> resolvedCachePath();

  // Empty or null without a container.
  std::vector<LKNote*> fetchNotes();
  LKNote* fetchNote(const UUID& id);
  // The first note of that title in any case, trashed ones after all others.
  LKNote* fetchNoteTitled(const std::string& title);
  // The row of a note that was found on the disk; by its file when it has no id of its own there.
  LKNote* fetchNote(const ResolvedNote& note);
  std::vector<LKBackLink*> fetchBacklinks(const UUID& targetNoteID);
  std::vector<LKTag*> fetchTags();
  std::vector<LKTask*> fetchTasks();
  // The notes that are not in the trash; nothing without a container.
  std::optional<size_t> noteCount();

  // Notes of an index that is there: one that is open or the application's. Builds none.
  std::vector<LKNote*> fetchNotesAtHand(const LKPredicate<LKNote>& where);

 private:
  LKContext* appStore();
  LKContext* fileIndex();
  void dropStore(const LKStoreError& error);
  template <typename Answer>
  Answer answer(const std::function<Answer(LKContext&)>& question);

  LKParts parts_;
  bool triedStore_ = false;
  std::optional<std::string> storePath_;
  std::unique_ptr<LKContext> store_;
  std::unique_ptr<LKContext> failedStore_;  // its rows may be in use
  // Shared with the run's memo, which another reader may have replaced since.
  std::shared_ptr<LKContext> files_;
};

}  // namespace lk
