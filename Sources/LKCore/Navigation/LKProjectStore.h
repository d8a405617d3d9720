#pragma once

// The registry of the projects that a collection knows: `projects.json` in the `.config` folder
// of the active documents directory, an object from name to entry:
//
//     {
//       "acme/site" : {
//         "createdDate" : "2026-03-14T09:26:53Z",
//         "isArchived" : false,
//         "origin" : "auto"
//       }
//     }
//
// Names are hierarchical with "/" and one name in any case. Every process of the user shares the
// file: a change takes its lock, reads it anew and replaces it, so that no entry is lost. Keys
// that this version does not know, and entries that it cannot read, stay as they are; a damaged
// file is kept aside under a new name by the first change. What was read is kept in memory until
// this store changes it, another collection becomes active or `invalidateCache` is called.
//
//     LKProjectStore& store = LKProjectStore::shared();
//     store.ensureExists(names);
//     store.renameSubtree("acme", "nimbus");
//
// Operations may come from any thread. Those that change something throw FileError when it cannot
// be saved, and nothing is changed then; they post kProjectsChanged after the file was written.
// One that finds nothing to change writes nothing and posts nothing.

#include <filesystem>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Clock.h"
#include "LKCore/Base/Json.h"
#include "LKCore/Base/Time.h"
#include "LKCore/Navigation/LKIndexFacts.h"

namespace lk {

// Posted after the registry of projects changed.
inline constexpr const char* kProjectsChanged = "com.larkspire.projectsChanged";

struct LKProjectEntry {
  // Who brought the project in: a person, or the system as it met the name in a note ("auto").
  enum class Origin { manual, automatic };

  Instant createdDate;
  bool isArchived = false;
  std::optional<Origin> origin;

  bool operator==(const LKProjectEntry&) const = default;
};

class LKProjectStore {
 public:
  using Entries = std::map<std::string, LKProjectEntry>;  // by name

  struct ReferenceCounts {
    size_t notes = 0;          // that use the name by a tag
    size_t tasks = 0;          // that belong to the project
    size_t explicitTasks = 0;  // of these, the ones that say so on their line

    bool operator==(const ReferenceCounts&) const = default;
  };

  // The store of the active collection, whichever that is at the moment.
  static LKProjectStore& shared();

  // A store of the registry in the `.config` folder that `configFolder` gives at each call.
  explicit LKProjectStore(std::function<std::filesystem::path()> configFolder,
                          Clock clock = Instant::now);

  // --- Asking. A registry that cannot be read is logged and counts as empty. ---

  Entries loadAll() const;
  // In the order of lists for people.
  std::vector<std::string> allProjectNames() const;
  std::vector<std::string> activeProjectNames() const;  // not archived
  // The registered names strictly below the name, in that order.
  std::vector<std::string> registeredNamesUnder(std::string_view name) const;

  // The registered names and those that notes and tasks use, each once, in the registry's case or
  // as first met; in the order of lists for people.
  std::vector<std::string> allKnownNames(const LKIndexFacts& facts) const;
  // For each of those names what refers to it. A tag `#projects/acme` refers to "acme".
  std::map<std::string, ReferenceCounts> referenceCounts(const LKIndexFacts& facts) const;

  // The name under which the entries have this project: the same text, or the same in another case.
  static std::optional<std::string> registryKey(std::string_view name, const Entries& entries);

  // Forgets what was read.
  void invalidateCache();

  // --- Changing. Each says whether the registry changed. ---

  // Registers the name, unless it is empty or registered.
  bool add(std::string_view name, LKProjectEntry::Origin origin);
  // Registers those of the names that are missing, as automatic. Costs no look at the disk when
  // all are known.
  bool ensureExists(std::span<const std::string> names);

  bool archive(std::string_view name);
  bool unarchive(std::string_view name);
  bool remove(std::string_view name);
  // The entry keeps its date, flag and origin under the new name. Where that is another registered
  // project, that one's entry stays and the old one goes.
  bool rename(std::string_view from, std::string_view to);

  // The same for the name, registered or not, and every registered name below it.
  bool setArchivedSubtree(std::string_view name, bool archived);
  bool removeSubtree(std::string_view name);
  bool renameSubtree(std::string_view from, std::string_view to);

 private:
  enum class Reach { name, subtree };

  std::filesystem::path file() const;
  const Entries& loaded() const;
  bool areAllRegistered(std::span<const std::string> names) const;
  bool change(const std::function<void(Json&)>& apply);
  bool setArchived(std::string_view name, Reach reach, bool archived);
  bool erase(std::string_view name, Reach reach);
  bool move(std::string_view from, std::string_view to, Reach reach);

  std::function<std::filesystem::path()> configFolder_;
  Clock clock_;
  mutable std::mutex mutex_;  // around the two below, and each change
  mutable std::optional<Entries> cached_;
  mutable std::filesystem::path cachedFile_;  // what `cached_` was read from
};

}  // namespace lk
