#pragma once

// The saved queries of a collection, in its folder ".queries": one file "<UUID>.json" each, so that
// they travel with the notes. Three of them come with the system; their names and rules are always
// those of the definitions here, while icon and colour are the user's.
//
//     LKQueryStore store = LKQueryStore::shared();
//     store.installDefaultQueries(LKQueryStore::Install::once, false);
//     for (const LKSavedQuery& query : store.loadAll()) ...
//
// Nothing is held in memory: each call looks at the disk, and a file is replaced whole.

#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "LKCore/Base/Clock.h"
#include "LKCore/Base/Error.h"
#include "LKCore/Base/UUID.h"
#include "LKCore/Queries/LKSavedQuery.h"

namespace lk {

class LKQueryStore {
 public:
  // The store of the active collection.
  static LKQueryStore shared();

  explicit LKQueryStore(std::filesystem::path collectionFolder, Clock clock = Instant::now);

  static UUID overdueQueryID();
  static UUID dueTodayQueryID();
  static UUID thisWeekQueryID();
  static std::set<UUID> builtInQueryIDs();

  // The three as they are installed, in the order above; without a date.
  static const std::vector<LKSavedQuery>& builtInDefinitions();
  // The query with the name and rules of its definition; any other query as it is.
  static LKSavedQuery applyingBuiltInDefinition(LKSavedQuery query);
  // The icon of a query that has none of its own.
  static std::string defaultSymbolName(const UUID& id);

  // Called for each file that was passed over.
  using Skipped = std::function<void(const std::filesystem::path& file, const Error& why)>;

  // What an earlier version kept in ".views" is brought over, or read where it is: in a collection
  // that is read-only nothing moves.
  enum class OldFolder { moved, left };

  // Every query, the oldest first, those of one second by id. A file that is no query is logged and
  // passed over.
  std::vector<LKSavedQuery> loadAll(const Skipped& skipped = {},
                                    OldFolder oldFolder = OldFolder::moved) const;

  // Nothing for a query that is not there. Throws FileError, and JsonError for a damaged file.
  std::optional<LKSavedQuery> load(const UUID& id) const;

  // Writes the query's file. Throws FileError and then leaves the old one.
  void save(const LKSavedQuery& query) const;

  // Removes the query's file, if it is there. Throws FileError.
  void remove(const UUID& id) const;

  enum class Install { once, forced };

  // Saves those of the three that have no file, and remembers in the user's settings that this was
  // done; `once` does nothing after that, so that a query which the user removed stays away. One
  // that may be on its way from another device is left out: its placeholder is there, or the folder
  // lies in the cloud and is not `collectionFullySynced`. Never throws; failures are logged.
  void installDefaultQueries(Install install, bool collectionFullySynced) const;

 private:
  std::filesystem::path folder() const { return collection_ / ".queries"; }
  std::filesystem::path fileOf(const UUID& id) const { return folder() / (id.text() + ".json"); }
  std::filesystem::path viewsFolder() const { return collection_ / ".views"; }
  void migrateFromViewsDirectory() const;
  std::vector<std::filesystem::path> files(OldFolder oldFolder) const;
  void installIfMissing(LKSavedQuery query) const;

  std::filesystem::path collection_;
  Clock clock_;
};

}  // namespace lk
