#include "LKCore/Queries/LKQueryStore.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <tuple>
#include <utility>

#include "LKCore/Base/Log.h"
#include "LKCore/Collections/FolderRejection.h"
#include "LKCore/Collections/LKCollectionPath.h"
#include "LKCore/NoteFiles/LKFileWrite.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Platform/UserDefaults.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

constexpr const char* kQueryExtension = ".json";
constexpr const char* kInstalledVersionKey = "lkDefaultQueriesVersion";
constexpr int64_t kInstalledVersion = 1;

UUID builtInID(uint8_t number) {
  std::array<uint8_t, 16> bytes{};
  bytes.back() = number;
  return UUID::fromBytes(bytes);
}

LKSavedQuery builtInQuery(uint8_t number, const char* name, const char* symbol, const char* tint,
                          std::vector<LKQueryRule> rules) {
  LKSavedQuery query;
  query.id = builtInID(number);
  query.name = name;
  query.rules = std::move(rules);
  query.symbolName = symbol;
  query.tintColorName = tint;
  query.isBuiltIn = true;
  return query;
}

LKQueryRule builtInRule(LKQueryRule::Field field, LKQueryRule::Operator op,
                        const char* value = "") {
  return {field, op, value};
}

// The files in the folder with the extension of queries; none when it cannot be read.
std::vector<fs::path> queryFilesIn(const fs::path& folder) {
  std::vector<fs::path> files;
  std::error_code failure;
  for (fs::directory_iterator entry(folder, failure); !failure && entry != fs::directory_iterator();
       entry.increment(failure)) {
    if (entry->path().extension() == kQueryExtension) files.push_back(entry->path());
  }
  std::ranges::sort(files);
  return files;
}

// Moves the file to a name that nobody reads, "<UUID> 2.json", when its own is taken by other
// bytes.
void moveOrKeepAside(const fs::path& file, const fs::path& target) {
  if (moveFile(file, target)) return;
  if (readFile(file) == readFile(target)) return removeFile(file);
  fs::path aside = target;
  for (int number = 2;; ++number) {
    aside.replace_filename(target.stem().string() + " " + std::to_string(number) + kQueryExtension);
    if (moveFile(file, aside)) return;
  }
}

}  // namespace

// --- The built-in queries ------------------------------------------------------------------------

UUID LKQueryStore::overdueQueryID() {
  return builtInID(1);
}
UUID LKQueryStore::dueTodayQueryID() {
  return builtInID(2);
}
UUID LKQueryStore::thisWeekQueryID() {
  return builtInID(3);
}

std::set<UUID> LKQueryStore::builtInQueryIDs() {
  return {overdueQueryID(), dueTodayQueryID(), thisWeekQueryID()};
}

const std::vector<LKSavedQuery>& LKQueryStore::builtInDefinitions() {
  static const std::vector<LKSavedQuery> definitions = {
      builtInQuery(
          1, "Overdue", "exclamationmark.circle", "orange",
          {builtInRule(LKQueryRule::Field::taskDueDate, LKQueryRule::Operator::isOverdue)}),
      builtInQuery(2, "Due Today", "calendar", "blue",
                   {builtInRule(LKQueryRule::Field::taskDueDate, LKQueryRule::Operator::isToday)}),
      builtInQuery(3, "Due This Week", "calendar.badge.clock", "default",
                   {builtInRule(LKQueryRule::Field::taskCompletion, LKQueryRule::Operator::isFalse),
                    builtInRule(LKQueryRule::Field::taskDueDate,
                                LKQueryRule::Operator::beforeDaysFromToday, "7")})};
  return definitions;
}

LKSavedQuery LKQueryStore::applyingBuiltInDefinition(LKSavedQuery query) {
  const auto found = std::ranges::find(builtInDefinitions(), query.id, &LKSavedQuery::id);
  if (found == builtInDefinitions().end()) return query;
  query.name = found->name;
  query.rules = found->rules;
  return query;
}

std::string LKQueryStore::defaultSymbolName(const UUID& id) {
  const auto found = std::ranges::find(builtInDefinitions(), id, &LKSavedQuery::id);
  return found == builtInDefinitions().end() ? "magnifyingglass" : found->symbolName.value_or("");
}

// --- The files -----------------------------------------------------------------------------------

LKQueryStore LKQueryStore::shared() {
  return LKQueryStore(LKCollectionPath::activeDocumentsDirectory());
}

LKQueryStore::LKQueryStore(fs::path collectionFolder, Clock clock)
    : collection_(std::move(collectionFolder)), clock_(std::move(clock)) {}

// A name that both folders have is that of the newer one.
std::vector<fs::path> LKQueryStore::files(OldFolder oldFolder) const {
  if (oldFolder == OldFolder::moved) migrateFromViewsDirectory();
  std::vector<fs::path> files = queryFilesIn(folder());
  if (oldFolder == OldFolder::moved) return files;
  for (fs::path& old : queryFilesIn(viewsFolder())) {
    if (!nameIsTaken(folder() / old.filename())) files.push_back(std::move(old));
  }
  return files;
}

std::vector<LKSavedQuery> LKQueryStore::loadAll(const Skipped& skipped, OldFolder oldFolder) const {
  std::vector<LKSavedQuery> queries;
  for (const fs::path& file : files(oldFolder)) {
    if (!UUID::parse(file.stem().string())) continue;
    try {
      queries.push_back(applyingBuiltInDefinition(decodeQuery(readFile(file))));
    } catch (const Error& error) {
      log::warning("⚠️ LKQueryStore: Cannot decode query at " + file.string() + ": " +
                   error.description());
      if (skipped) skipped(file, error);
    }
  }
  std::ranges::sort(queries, [](const LKSavedQuery& a, const LKSavedQuery& b) {
    return std::tie(a.createdDate, a.id) < std::tie(b.createdDate, b.id);
  });
  return queries;
}

std::optional<LKSavedQuery> LKQueryStore::load(const UUID& id) const {
  try {
    return applyingBuiltInDefinition(decodeQuery(readFile(fileOf(id))));
  } catch (const FileError& error) {
    if (error.code() == ENOENT || error.code() == ENOTDIR) return std::nullopt;
    throw;
  }
}

void LKQueryStore::save(const LKSavedQuery& query) const {
  createFolders(folder());
  LKFileWrite::atomically(encodeQuery(query), fileOf(query.id));
}

void LKQueryStore::remove(const UUID& id) const {
  try {
    removeFile(fileOf(id));
  } catch (const FileError& error) {
    if (error.code() != ENOENT && error.code() != ENOTDIR) throw;
  }
}

// The old folder stays while anything is left in it. A link is none: what lies behind it is somebody
// else's.
void LKQueryStore::migrateFromViewsDirectory() const {
  const fs::path old = viewsFolder();
  std::error_code ignored;
  if (!fs::is_directory(fs::symlink_status(old, ignored))) return;
  try {
    createFolders(folder());
    for (const fs::path& file : queryFilesIn(old)) {
      moveOrKeepAside(file, folder() / file.filename());
    }
  } catch (const FileError& error) {
    log::warning("LKQueryStore: " + error.description());
  }
  fs::remove(old, ignored);
}

void LKQueryStore::installDefaultQueries(Install install, bool collectionFullySynced) const {
  const bool isDone = userDefaults::integer(kInstalledVersionKey) == kInstalledVersion;
  if (isDone && install == Install::once) return;
  try {
    if (collectionFullySynced || !detectCloudSync(collection_)) {
      for (const LKSavedQuery& query : builtInDefinitions()) installIfMissing(query);
    }
  } catch (const FileError& error) {
    log::warning("LKQueryStore: " + error.description());
  }
  try {
    userDefaults::setInteger(kInstalledVersionKey, kInstalledVersion);
  } catch (const FileError& error) {
    log::warning("LKQueryStore: " + error.description());
  }
}

void LKQueryStore::installIfMissing(LKSavedQuery query) const {
  const fs::path file = fileOf(query.id);
  if (nameIsTaken(folder() / ("." + file.filename().string() + ".icloud"))) return;
  if (nameIsTaken(file)) return;
  query.createdDate = clock_();
  createFolders(folder());
  if (!LKFileWrite::createAtomically(encodeQuery(query), file)) {
    log::debug("LKQueryStore: another process has made " + file.string());
  }
}

}  // namespace lk
