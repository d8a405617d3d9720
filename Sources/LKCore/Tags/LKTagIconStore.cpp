#include "LKCore/Tags/LKTagIconStore.h"

#include <utility>

#include "LKCore/Base/Log.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Collections/LKCollectionPath.h"
#include "LKCore/NoteFiles/LKFileWrite.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Tags/TagPaths.h"

namespace lk {

namespace {

constexpr const char* kSymbolKey = "symbolName";
constexpr const char* kTintKey = "tintColorName";

Json::object_t iconObject(const std::filesystem::path& file) {
  const std::string bytes = readFile(file);
  if (text::trimmed(bytes).empty()) return {};
  try {
    Json json = parseJson(bytes);
    if (json.is_object()) return std::move(json.get_ref<Json::object_t&>());
  } catch (const JsonError& error) {
    throw JsonError("The tag icons in " + file.string() + " are damaged: " + error.description());
  }
  throw JsonError("The tag icons in " + file.string() + " are damaged: not an object");
}

std::optional<std::string> nameIn(const Json& entry, const char* key) {
  const auto found = entry.find(key);
  return found != entry.end() && found->is_string() ? std::optional(found->get<std::string>())
                                                    : std::nullopt;
}

std::optional<LKTagIcon> readIcon(const Json& entry) {
  if (!entry.is_object()) return std::nullopt;
  LKTagIcon icon = {nameIn(entry, kSymbolKey), nameIn(entry, kTintKey)};
  return icon == LKTagIcon{} ? std::nullopt : std::optional(std::move(icon));
}

void setName(Json& entry, const char* key, const std::optional<std::string>& name) {
  if (name) {
    entry[key] = *name;
  } else {
    entry.erase(key);
  }
}

}  // namespace

LKTagIconStore::LKTagIconStore(const std::filesystem::path& collectionFolder)
    : file_(collectionFolder / ".config" / "tag-icons.json") {}

LKTagIconStore LKTagIconStore::ofActiveCollection() {
  return LKTagIconStore(LKCollectionPath::activeDocumentsDirectory());
}

std::map<std::string, LKTagIcon> LKTagIconStore::icons() const {
  std::map<std::string, LKTagIcon> icons;
  try {
    if (!nameIsTaken(file_)) return icons;
    for (const auto& [tag, entry] : iconObject(file_)) {
      if (auto icon = readIcon(entry)) icons.emplace(tag, std::move(*icon));
    }
  } catch (const Error& error) {
    log::warning("LKTagIconStore: " + error.description());
  }
  return icons;
}

std::optional<LKTagIcon> LKTagIconStore::icon(const std::string& tag) const {
  const auto all = icons();
  const auto found = all.find(tag);
  return found == all.end() ? std::nullopt : std::optional(found->second);
}

void LKTagIconStore::change(const Change& apply) const {
  const FileLock lock = FileLock::forUpdate(file_);
  const Json::object_t before = iconObject(lock.path());
  Json::object_t after = before;
  apply(after);
  if (after != before) LKFileWrite::atomically(printJson(after) + "\n", lock.path());
}

void LKTagIconStore::setIcon(const std::string& tag, const LKTagIcon& icon) const {
  if (icon == LKTagIcon{}) return clear({tag});
  createFolders(file_.parent_path());
  if (!nameIsTaken(file_) && LKFileWrite::createAtomically("{}\n", file_)) {
    log::debug("LKTagIconStore: made " + file_.string());
  }
  change([&](Json::object_t& entries) {
    Json& entry = entries[tag];
    if (!entry.is_object()) entry = Json::object();
    setName(entry, kSymbolKey, icon.symbolName);
    setName(entry, kTintKey, icon.tintColorName);
  });
}

void LKTagIconStore::rename(const std::string& from, const std::string& to) const {
  if (!nameIsTaken(file_)) return;
  change([&](Json::object_t& entries) {
    entries = tags::withRenamedKeys(entries, [&](const std::string& tag) {
      return tag == from ? std::optional(to) : std::nullopt;
    });
  });
}

void LKTagIconStore::renamePrefix(const std::string& from, const std::string& to) const {
  if (!nameIsTaken(file_)) return;
  change([&](Json::object_t& entries) {
    entries = tags::withRenamedKeys(
        entries, [&](const std::string& tag) { return tags::renamed(tag, from, to); });
  });
}

void LKTagIconStore::clear(const std::vector<std::string>& tags) const {
  if (tags.empty() || !nameIsTaken(file_)) return;
  change([&](Json::object_t& entries) {
    for (const std::string& tag : tags) entries.erase(tag);
  });
}

}  // namespace lk
