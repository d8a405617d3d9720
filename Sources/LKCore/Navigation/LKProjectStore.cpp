#include "LKCore/Navigation/LKProjectStore.h"

#include <algorithm>
#include <set>
#include <utility>

#include "LKCore/Base/Log.h"
#include "LKCore/Base/Notices.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Collections/LKCollectionPath.h"
#include "LKCore/Navigation/LKProjectTextRewrite.h"
#include "LKCore/Platform/SharedFile.h"
#include "LKCore/Terminology/LKProjectName.h"
#include "LKCore/Terminology/LKProjectTerms.h"

namespace lk {

namespace {

constexpr const char* kCreatedDate = "createdDate";
constexpr const char* kIsArchived = "isArchived";
constexpr const char* kOrigin = "origin";

// --- The file's form -----------------------------------------------------------------------------

Json entryJson(Instant created, LKProjectEntry::Origin origin) {
  return {{kCreatedDate, formatISO8601(created)},
          {kIsArchived, false},
          {kOrigin, origin == LKProjectEntry::Origin::manual ? "manual" : "auto"}};
}

// A member that another version wrote in another form counts as absent.
std::string textMember(const Json& entry, const char* key) {
  const auto found = entry.find(key);
  return found != entry.end() && found->is_string() ? found->get<std::string>() : std::string();
}

LKProjectEntry entryIn(const Json& json) {
  LKProjectEntry entry;
  entry.createdDate = parseISO8601(textMember(json, kCreatedDate)).value_or(Instant{});
  const auto archived = json.find(kIsArchived);
  entry.isArchived = archived != json.end() && archived->is_boolean() && archived->get<bool>();
  const std::string origin = textMember(json, kOrigin);
  if (origin == "manual") entry.origin = LKProjectEntry::Origin::manual;
  if (origin == "auto") entry.origin = LKProjectEntry::Origin::automatic;
  return entry;
}

LKProjectStore::Entries entriesIn(const Json& document) {
  LKProjectStore::Entries entries;
  for (const auto& [name, json] : document.items()) {
    if (json.is_object()) {
      entries.emplace(name, entryIn(json));
    } else {
      log::warning("The entry of the project " + name + " cannot be read and is passed over.");
    }
  }
  return entries;
}

// --- Names ---------------------------------------------------------------------------------------

void sortForPeople(std::vector<std::string>& names) {
  std::ranges::stable_sort(names, [](const std::string& a, const std::string& b) {
    return text::compareLocalized(a, b) < 0;
  });
}

// Adds an entry; one that cannot be read keeps its place.
void addEntry(Json& document, LKProjectStore::Entries& entries, std::string_view name,
              Instant created, LKProjectEntry::Origin origin) {
  if (name.empty() || document.contains(name)) return;
  if (LKProjectStore::registryKey(name, entries)) return;
  const Json json = entryJson(created, origin);
  entries.emplace(name, entryIn(json));
  document[std::string(name)] = json;
}

std::vector<std::string> keysBelow(const LKProjectStore::Entries& entries, std::string_view name) {
  std::vector<std::string> keys;
  for (const auto& [key, entry] : entries) {
    if (LKProjectName::offsetBelow(key, name)) keys.push_back(key);
  }
  return keys;
}

// The readable entries that an operation on the name concerns.
std::vector<std::string> concernedKeys(const Json& document, std::string_view name,
                                       bool withSubtree) {
  const LKProjectStore::Entries entries = entriesIn(document);
  std::vector<std::string> keys;
  if (withSubtree) keys = keysBelow(entries, name);
  if (auto key = LKProjectStore::registryKey(name, entries)) keys.push_back(*std::move(key));
  return keys;
}

// --- Counting ------------------------------------------------------------------------------------

// Names of one project in any case, under the one that came first.
class KnownNames {
 public:
  struct Known {
    std::string name;
    LKProjectStore::ReferenceCounts counts;
  };

  explicit KnownNames(const LKProjectStore::Entries& registered) {
    for (const auto& [name, entry] : registered) at(name);
  }

  Known& at(std::string_view name) {
    return known_.try_emplace(text::caseInsensitiveKey(name), Known{std::string(name), {}})
        .first->second;
  }

  void count(const LKIndexFacts& facts) {
    const auto terms = LKProjectTerms::snapshot();
    for (const LKNoteFacts& note : facts.notes) countNote(note, *terms);
    for (const LKTaskFacts& task : facts.tasks) {
      if (task.project.empty()) continue;
      LKProjectStore::ReferenceCounts& counts = at(task.project).counts;
      ++counts.tasks;
      if (!task.projectIsInherited) ++counts.explicitTasks;
    }
  }

  const std::map<std::string, Known>& all() const { return known_; }

 private:
  // A note with two tags of one project counts once.
  void countNote(const LKNoteFacts& note, const LKProjectTermsSnapshot& terms) {
    std::set<Known*> used;
    for (const std::string_view tag : note.tags) {
      if (const auto offset = terms.projectNameOffset(tag)) used.insert(&at(tag.substr(*offset)));
    }
    for (Known* known : used) ++known->counts.notes;
  }

  std::map<std::string, Known> known_;  // by key; nodes stay in place
};

}  // namespace

// --- Making and loading --------------------------------------------------------------------------

LKProjectStore& LKProjectStore::shared() {
  static LKProjectStore store(
      [] { return LKCollectionPath::activeDocumentsDirectory() / ".config"; });
  return store;
}

LKProjectStore::LKProjectStore(std::function<std::filesystem::path()> configFolder, Clock clock)
    : configFolder_(std::move(configFolder)), clock_(std::move(clock)) {}

std::filesystem::path LKProjectStore::file() const {
  return configFolder_() / "projects.json";
}

// With the mutex held, as long as the result is used.
const LKProjectStore::Entries& LKProjectStore::loaded() const {
  const std::filesystem::path path = file();
  if (cached_ && cachedFile_ == path) return *cached_;
  cached_.emplace();
  cachedFile_ = path;
  try {
    *cached_ = entriesIn(readSharedObject(path));
  } catch (const Error& error) {
    log::warning("The projects cannot be read: " + error.description());
  }
  return *cached_;
}

LKProjectStore::Entries LKProjectStore::loadAll() const {
  const std::lock_guard guard(mutex_);
  return loaded();
}

bool LKProjectStore::areAllRegistered(std::span<const std::string> names) const {
  const std::lock_guard guard(mutex_);
  const Entries& known = loaded();
  return std::ranges::all_of(names, [&](const std::string& name) {
    return name.empty() || registryKey(name, known).has_value();
  });
}

void LKProjectStore::invalidateCache() {
  const std::lock_guard guard(mutex_);
  cached_.reset();
}

// --- Asking --------------------------------------------------------------------------------------

std::vector<std::string> LKProjectStore::allProjectNames() const {
  std::vector<std::string> names;
  for (const auto& [name, entry] : loadAll()) names.push_back(name);
  sortForPeople(names);
  return names;
}

std::vector<std::string> LKProjectStore::activeProjectNames() const {
  std::vector<std::string> names;
  for (const auto& [name, entry] : loadAll()) {
    if (!entry.isArchived) names.push_back(name);
  }
  sortForPeople(names);
  return names;
}

std::vector<std::string> LKProjectStore::registeredNamesUnder(std::string_view name) const {
  std::vector<std::string> names = keysBelow(loadAll(), name);
  sortForPeople(names);
  return names;
}

std::vector<std::string> LKProjectStore::allKnownNames(const LKIndexFacts& facts) const {
  std::vector<std::string> names;
  for (const auto& [name, counts] : referenceCounts(facts)) names.push_back(name);
  sortForPeople(names);
  return names;
}

std::map<std::string, LKProjectStore::ReferenceCounts> LKProjectStore::referenceCounts(
    const LKIndexFacts& facts) const {
  KnownNames names(loadAll());
  names.count(facts);
  std::map<std::string, ReferenceCounts> result;
  for (const auto& [key, known] : names.all()) result.emplace(known.name, known.counts);
  return result;
}

std::optional<std::string> LKProjectStore::registryKey(std::string_view name,
                                                       const Entries& entries) {
  const std::string exact(name);
  if (entries.contains(exact)) return exact;
  const std::string wanted = text::caseInsensitiveKey(name);
  for (const auto& [key, entry] : entries) {
    if (text::caseInsensitiveKey(key) == wanted) return key;
  }
  return std::nullopt;
}

// --- Changing ------------------------------------------------------------------------------------

bool LKProjectStore::change(const std::function<void(Json&)>& apply) {
  const std::filesystem::path path = file();
  {
    const std::lock_guard guard(mutex_);
    const SharedObject changed = changeSharedObject(path, clock_(), apply);
    cached_ = entriesIn(changed.object);
    cachedFile_ = path;
    if (!changed.isChanged) return false;
  }
  notices::post(kProjectsChanged);
  return true;
}

bool LKProjectStore::add(std::string_view name, LKProjectEntry::Origin origin) {
  return change([&](Json& document) {
    Entries entries = entriesIn(document);
    addEntry(document, entries, name, clock_(), origin);
  });
}

bool LKProjectStore::ensureExists(std::span<const std::string> names) {
  if (areAllRegistered(names)) return false;
  return change([&](Json& document) {
    Entries entries = entriesIn(document);
    for (const std::string& name : names) {
      addEntry(document, entries, name, clock_(), LKProjectEntry::Origin::automatic);
    }
  });
}

bool LKProjectStore::setArchived(std::string_view name, Reach reach, bool archived) {
  return change([&](Json& document) {
    for (const std::string& key : concernedKeys(document, name, reach == Reach::subtree)) {
      if (entryIn(document[key]).isArchived != archived) document[key][kIsArchived] = archived;
    }
  });
}

bool LKProjectStore::erase(std::string_view name, Reach reach) {
  return change([&](Json& document) {
    for (const std::string& key : concernedKeys(document, name, reach == Reach::subtree)) {
      document.erase(key);
    }
  });
}

bool LKProjectStore::move(std::string_view from, std::string_view to, Reach reach) {
  if (to.empty()) return false;
  const bool withSubtree = reach == Reach::subtree;
  return change([&](Json& document) {
    std::vector<std::pair<std::string, Json>> moved;
    for (const std::string& key : concernedKeys(document, from, withSubtree)) {
      const auto name = LKProjectTextRewrite::renameProjectName(key, from, to, withSubtree);
      moved.emplace_back(name.value_or(key), document[key]);
      document.erase(key);
    }
    const Entries staying = entriesIn(document);
    for (auto& [name, json] : moved) {
      const bool isTaken = document.contains(name) || registryKey(name, staying);
      if (!isTaken) document[name] = std::move(json);
    }
  });
}

bool LKProjectStore::archive(std::string_view name) {
  return setArchived(name, Reach::name, true);
}

bool LKProjectStore::unarchive(std::string_view name) {
  return setArchived(name, Reach::name, false);
}

bool LKProjectStore::remove(std::string_view name) {
  return erase(name, Reach::name);
}

bool LKProjectStore::rename(std::string_view from, std::string_view to) {
  return move(from, to, Reach::name);
}

bool LKProjectStore::setArchivedSubtree(std::string_view name, bool archived) {
  return setArchived(name, Reach::subtree, archived);
}

bool LKProjectStore::removeSubtree(std::string_view name) {
  return erase(name, Reach::subtree);
}

bool LKProjectStore::renameSubtree(std::string_view from, std::string_view to) {
  return move(from, to, Reach::subtree);
}

}  // namespace lk
