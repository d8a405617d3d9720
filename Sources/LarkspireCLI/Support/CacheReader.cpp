#include "LarkspireCLI/Support/CacheReader.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string_view>

#include "LKCore/Base/Text.h"
#include "LKCore/DataModel/SQLiteStore.h"
#include "LKCore/NoteRepository/LKFileIndex.h"
#include "LKCore/Platform/Files.h"
#include "LarkspireCLI/Support/AppContainerRegistry.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/CollectionLocator.h"
#include "LarkspireCLI/Support/DocumentationPage.h"
#include "LarkspireCLI/Support/LaunchingApp.h"
#include "LarkspireCLI/Support/NoteFinder.h"
#include "LarkspireCLI/Support/Output.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

// The file index of this run.
struct FileIndexMemo {
  fs::path collection;
  LKParts parts = LKParts::none;
  std::shared_ptr<LKContext> index;
};

FileIndexMemo& fileIndexMemo() {
  static FileIndexMemo memo;
  return memo;
}

// Why this run reads files is told once, whatever the reason.
void tellOnce(const std::function<std::string()>& text) {
  static bool isTold = false;
  if (isTold || collectionRun().quiet) return;
  isTold = true;
  printError(text());
}

// "No notes found" is not the truth about a folder that may not be read.
void tellWhenUnreadable(const fs::path& folder) {
  std::error_code failure;
  const fs::directory_iterator entries(folder, failure);
  if (!failure || collectionRun().quiet) return;
  printError("Warning: could not read " + FileError(folder, failure.value()).description());
}

std::string hint(AppIndexAccess::Access access) {
  if (access != AppIndexAccess::Access::denied) {
    return "Note: lk read your note files directly, because Larkspire hasn't indexed this "
           "collection yet.\n"
           "  Faster: open the collection in Larkspire once.   (--quiet hides this note)";
  }
  const auto app = LaunchingApp::name();
  return "Note: lk read your note files directly, because macOS doesn't allow " +
         app.value_or("the app you ran lk from") +
         " to open Larkspire' index.\n"
         "  Faster: System Settings ▸ Privacy & Security ▸ Files & Folders ▸ " +
         app.value_or("that app") +
         " ▸ turn on Larkspire.\n  How: " + documentationPage(kPermissionsPage) +
         "   (--quiet hides this note)";
}

// The store in the application's caches that was written last.
std::optional<fs::path> findSandboxedCacheStore() {
  std::error_code failure;
  std::optional<fs::path> newest;
  fs::file_time_type newestTime;
  fs::directory_iterator entries(AppContainerRegistry::supportDir() / "caches", failure);
  for (; !failure && entries != fs::directory_iterator(); entries.increment(failure)) {
    if (entries->path().extension() != ".store") continue;
    std::error_code unknown;
    const fs::file_time_type time = entries->last_write_time(unknown);
    if (unknown || (newest && time <= newestTime)) continue;
    newest = entries->path();
    newestTime = time;
  }
  return newest;
}

struct PickedStore {
  std::optional<fs::path> operator()(const StorePolicy& policy) const {
    std::error_code ignored;
    return fs::exists(policy.url, ignored) ? std::optional(policy.url) : std::nullopt;
  }
  std::optional<fs::path> operator()(const AutoPolicy& /*policy*/) const {
    return findSandboxedCacheStore();
  }
  std::optional<fs::path> operator()(const UnavailablePolicy& /*policy*/) const {
    return std::nullopt;
  }
};

bool isFileIndexForced() {
  const char* value = std::getenv("LK_FILE_INDEX");
  return value != nullptr && std::string_view(value) == "1";
}

std::optional<fs::path> collectionFolder() {
  if (!collectionRun().collectionRoot.empty()) return collectionRun().collectionRoot;
  try {
    return CollectionLocator::resolve();
  } catch (const FileError&) {
    return std::nullopt;
  }
}

}  // namespace

// --- Opening -------------------------------------------------------------------------------------

LKContext* CacheReader::appStore() {
  if (triedStore_) return store_.get();
  triedStore_ = true;
  const auto url =
      isFileIndexForced() ? std::nullopt : std::visit(PickedStore{}, collectionRun().cachePolicy);
  if (!url) return nullptr;
  try {
    store_ = openStoreReadOnly(*url);
    storePath_ = url->string();
  } catch (const LKStoreError& error) {
    dropStore(error);
  }
  return store_.get();
}

LKContext* CacheReader::fileIndex() {
  if (files_) return files_.get();
  const auto folder = collectionFolder();
  if (!folder) return nullptr;
  FileIndexMemo& memo = fileIndexMemo();
  if (!memo.index || memo.collection != *folder || !hasParts(memo.parts, parts_)) {
    const LKParts parts = memo.collection == *folder ? memo.parts | parts_ : parts_;
    if (memo.collection != *folder) tellWhenUnreadable(*folder);
    memo = {*folder, parts, LKFileIndex::build(*folder, parts)};
  }
  files_ = memo.index;
  if (files_) tellOnce([] { return hint(AppIndexAccess::check()); });
  return files_.get();
}

LKContext* CacheReader::container() {
  LKContext* store = appStore();
  return store != nullptr ? store : fileIndex();
}

CacheReader::Source CacheReader::source() {
  const LKContext* index = container();
  if (index == nullptr) return None{};
  if (index == store_.get()) return AppIndex{};
  return Files{AppIndexAccess::check()};
}

std::optional<std::string> CacheReader::resolvedCachePath() {
  return appStore() != nullptr ? storePath_ : std::nullopt;
}

void CacheReader::dropStore(const LKStoreError& error) {
  failedStore_ = std::move(store_);
  tellOnce([&] {
    return "Note: lk read your note files directly, because the index can't be used: " +
           error.description();
  });
}

template <typename Answer>
Answer CacheReader::answer(const std::function<Answer(LKContext&)>& question) {
  try {
    LKContext* index = container();
    return index != nullptr ? question(*index) : Answer{};
  } catch (const LKStoreError& error) {
    if (!store_) return Answer{};
    dropStore(error);
    return answer(question);
  }
}

// --- Questions -----------------------------------------------------------------------------------

std::vector<LKNote*> CacheReader::fetchNotes() {
  return answer<std::vector<LKNote*>>(
      [&](LKContext& index) { return index.notes().fetch({.parts = parts_}); });
}

LKNote* CacheReader::fetchNote(const UUID& id) {
  return answer<LKNote*>([&](LKContext& index) -> LKNote* {
    const auto rows = index.notes().fetch({.where = notesWithID(id), .limit = 1, .parts = parts_});
    return rows.empty() ? nullptr : rows.front();
  });
}

LKNote* CacheReader::fetchNoteTitled(const std::string& title) {
  const std::string key = text::caseInsensitiveKey(title);
  LKNote* found = nullptr;
  for (LKNote* note : fetchNotes()) {
    if (text::caseInsensitiveKey(note->title) != key) continue;
    if (!note->isTrashed) return note;
    if (found == nullptr) found = note;
  }
  return found;
}

LKNote* CacheReader::fetchNote(const ResolvedNote& note) {
  LKNote* row = fetchNote(note.id);
  if (row != nullptr) return row;
  const std::vector<LKNote*> rows = fetchNotes();
  const auto found =
      std::ranges::find_if(rows, [&](const LKNote* each) { return each->fileURL == note.url; });
  return found == rows.end() ? nullptr : *found;
}

std::vector<LKBackLink*> CacheReader::fetchBacklinks(const UUID& targetNoteID) {
  return answer<std::vector<LKBackLink*>>([&](LKContext& index) {
    return index.backLinks().fetch({.where = linksTo(targetNoteID), .parts = parts_});
  });
}

std::vector<LKTag*> CacheReader::fetchTags() {
  return answer<std::vector<LKTag*>>(
      [&](LKContext& index) { return index.tags().fetch({.parts = parts_}); });
}

std::vector<LKTask*> CacheReader::fetchTasks() {
  return answer<std::vector<LKTask*>>(
      [&](LKContext& index) { return index.tasks().fetch({.parts = parts_}); });
}

std::optional<size_t> CacheReader::noteCount() {
  return answer<std::optional<size_t>>(
      [](LKContext& index) { return std::optional(index.notes().count(notTrashed())); });
}

std::vector<LKNote*> CacheReader::fetchNotesAtHand(const LKPredicate<LKNote>& where) {
  try {
    LKContext* index = appStore();
    if (index == nullptr) index = files_.get();
    if (index == nullptr) return {};
    return index->notes().fetch({.where = where, .parts = LKParts::none});
  } catch (const LKStoreError& error) {
    dropStore(error);
    return {};
  }
}

}  // namespace lk
