#include "LarkspireCLI/Support/PropertyScanner.h"

#include <algorithm>
#include <utility>

#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/NoteFiles/LKNoteFilename.h"
#include "LKCore/Platform/FolderReader.h"
#include "LKCore/Platform/FolderWalk.h"
#include "LKCore/Properties/LKMultiSelectValue.h"

namespace lk::PropertyScanner {

namespace fs = std::filesystem;

namespace {

using BlockProperties = std::map<std::string, std::string>;

// More than nearly every block takes, and no more than a disk reads at once anyway.
constexpr size_t kFileStart = 4096;

std::vector<std::string> relativeNotePaths(const fs::path& collection, bool includeDailyNotes) {
  std::vector<std::string> paths;
  WalkOptions options;
  if (includeDailyNotes) options.hiddenFolders = {".daily"};
  walkFolder(
      collection,
      [&](const WalkEntry& entry) {
        const bool mayBeFile =
            entry.kind == WalkEntry::Kind::file || entry.kind == WalkEntry::Kind::symbolicLink;
        if (mayBeFile && LKNoteFilename::hasNoteExtension(entry.name)) {
          paths.emplace_back(entry.relativePath);
        }
        return WalkStep::proceed;
      },
      options);
  std::ranges::sort(paths);
  return paths;
}

std::string titleOfFile(std::string_view path) {
  path.remove_prefix(path.rfind('/') + 1);
  path.remove_suffix(LKNoteFilename::noteExtension.size());
  return LKNoteFilename::displayNameOfBasename(path);
}

// Without those that are no text.
BlockProperties readableProperties(BlockProperties properties) {
  std::erase_if(properties, [](const auto& each) {
    return !text::isValidUTF8(each.first) || !text::isValidUTF8(each.second);
  });
  return properties;
}

// Empty for what is no note.
BlockProperties propertiesOf(std::string_view wholeFile) {
  if (auto block = readFrontMatter(wholeFile)) {
    return readableProperties(std::move(block->userProperties));
  }
  if (!text::isValidUTF8(wholeFile)) return {};
  auto document = parseDocumentIfValid(wholeFile);
  return document ? std::move(document->frontMatter.userProperties) : BlockProperties{};
}

BlockProperties propertiesIn(FolderReader& reader, const std::string& path) {
  const auto start = reader.read(path, kFileStart);
  if (!start) return {};
  if (auto block = readFrontMatter(start->bytes)) {
    return readableProperties(std::move(block->userProperties));
  }
  if (start->bytes.size() < kFileStart) return propertiesOf(start->bytes);
  const auto whole = reader.read(path);
  return whole ? propertiesOf(whole->bytes) : BlockProperties{};
}

// Makes each title's key once: comparing titles costs far more than the keys.
template <typename Item, typename TitleOf>
void sortByTitleKey(std::vector<Item>& items, const TitleOf& titleOf) {
  std::vector<std::pair<std::string, Item>> keyed;
  keyed.reserve(items.size());
  for (Item& item : items) {
    std::string key = text::localizedKey(titleOf(item));
    keyed.emplace_back(std::move(key), std::move(item));
  }
  std::ranges::stable_sort(keyed, [](const auto& a, const auto& b) { return a.first < b.first; });
  for (size_t i = 0; i < items.size(); ++i) items[i] = std::move(keyed[i].second);
}

}  // namespace

std::vector<NoteProperty> scanAllProperties(const fs::path& collection, bool includeDailyNotes) {
  std::vector<NoteProperty> found;
  FolderReader reader(collection);
  const std::string prefix = (collection / "").string();
  for (const std::string& path : relativeNotePaths(collection, includeDailyNotes)) {
    BlockProperties properties = propertiesIn(reader, path);
    if (properties.empty()) continue;
    const std::string title = titleOfFile(path);
    for (auto& [key, value] : properties) {
      found.push_back({title, prefix + path, key, std::move(value)});
    }
  }
  return found;
}

std::map<std::string, PropertyUse> usesByKey(const std::vector<NoteProperty>& properties) {
  std::map<std::string, PropertyUse> uses;
  std::map<const PropertyUse*, const fs::path*> lastNotes;
  for (const NoteProperty& property : properties) {
    PropertyUse& use = uses[text::caseInsensitiveKey(property.key)];
    const fs::path*& last = lastNotes[&use];
    if (last == nullptr) use.key = property.key;
    const bool isCounted = last != nullptr && last->native() == property.noteURL.native();
    if (!isCounted) use.noteTitles.push_back(property.noteTitle);
    last = &property.noteURL;
  }
  return uses;
}

std::map<std::string, int64_t> usageCounts(const fs::path& collection,
                                           const std::vector<LKPropertyDefinition>& schema) {
  std::map<std::string, int64_t> counts;
  for (const LKPropertyDefinition& definition : schema) {
    counts[text::caseInsensitiveKey(definition.name)] = 0;
  }
  for (const auto& [key, use] : usesByKey(scanAllProperties(collection))) {
    counts[key] = static_cast<int64_t>(use.noteTitles.size());
  }
  return counts;
}

std::vector<NoteProperty> notesUsing(const std::string& property,
                                     const std::optional<std::string>& value,
                                     const fs::path& collection) {
  const bool isMultiSelect =
      LKMultiSelectValue::multiSelectPropertyNames().contains(text::lowercased(property));
  std::vector<NoteProperty> found = scanAllProperties(collection);
  std::erase_if(found, [&](const NoteProperty& each) {
    if (!text::equalIgnoringCase(each.key, property)) return true;
    if (!value) return false;
    return isMultiSelect ? !LKMultiSelectValue::contains(each.value, *value)
                         : !text::equalIgnoringCase(each.value, *value);
  });
  sortByTitleKey(found,
                 [](const NoteProperty& each) -> const std::string& { return each.noteTitle; });
  return found;
}

void sortTitles(std::vector<std::string>& titles) {
  sortByTitleKey(titles, [](const std::string& title) -> const std::string& { return title; });
}

}  // namespace lk::PropertyScanner
