#include "LKCore/Tags/LKTagIconStore.h"

#include <utility>

#include "LKCore/Base/Log.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Base/Time.h"
#include "LKCore/Collections/LKCollectionPath.h"
#include "LKCore/Platform/SharedFile.h"
#include "LKCore/Tags/TagPaths.h"

namespace lk {

namespace {

constexpr const char* kSymbolKey = "symbolName";
constexpr const char* kTintKey = "tintColorName";

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
    : file_(collectionFolder / ".tag-icons.json") {}

LKTagIconStore LKTagIconStore::ofActiveCollection() {
  return LKTagIconStore(LKCollectionPath::activeDocumentsDirectory());
}

std::map<std::string, LKTagIcon> LKTagIconStore::icons() const {
  std::map<std::string, LKTagIcon> icons;
  try {
    const Json entries = readSharedObject(file_);
    for (const auto& [tag, entry] : entries.items()) {
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
  changeSharedObject(file_, Instant::now(),
                     [&](Json& object) { apply(object.get_ref<Json::object_t&>()); });
}

void LKTagIconStore::setIcon(const std::string& tag, const LKTagIcon& icon) const {
  if (icon == LKTagIcon{}) return clear({tag});
  change([&](Json::object_t& entries) {
    Json& entry = entries[tag];
    if (!entry.is_object()) entry = Json::object();
    setName(entry, kSymbolKey, icon.symbolName);
    setName(entry, kTintKey, icon.tintColorName);
  });
}

void LKTagIconStore::rename(const std::string& from, const std::string& to) const {
  change([&](Json::object_t& entries) {
    entries = tags::withRenamedKeys(entries, [&](const std::string& tag) {
      return text::equal(tag, from) ? std::optional(to) : std::nullopt;
    });
  });
}

void LKTagIconStore::renamePrefix(const std::string& from, const std::string& to) const {
  change([&](Json::object_t& entries) {
    entries = tags::withRenamedKeys(
        entries, [&](const std::string& tag) { return tags::renamed(tag, from, to); });
  });
}

void LKTagIconStore::clear(const std::vector<std::string>& tags) const {
  change([&](Json::object_t& entries) {
    for (const std::string& tag : tags) entries.erase(tag);
  });
}

}  // namespace lk
