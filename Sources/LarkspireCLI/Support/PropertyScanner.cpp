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

// Empty for what is no note.
BlockProperties propertiesOf(std::string_view wholeFile) {
  if (!text::isValidUTF8(wholeFile)) return {};
  auto document = parseDocumentIfValid(wholeFile);
  return document ? std::move(document->frontMatter.userProperties) : BlockProperties{};
}

BlockProperties propertiesIn(FolderReader& reader, const std::string& path) {
  const auto start = reader.read(path, kFileStart);
  if (!start) return {};
  const std::string_view lines = start->bytes.substr(0, start->bytes.rfind('\n') + 1);
  if (!text::isValidUTF8(lines)) return {};
  if (auto block = readFrontMatter(lines)) return std::move(block->userProperties);
  if (start->bytes.size() < kFileStart) return propertiesOf(start->bytes);
  const auto whole = reader.read(path);
  return whole ? propertiesOf(whole->bytes) : BlockProperties{};
}

}  // namespace

std::vector<NoteProperty> scanAllProperties(const fs::path& collection, bool includeDailyNotes) {
  std::vector<NoteProperty> found;
  FolderReader reader(collection);
  for (const std::string& path : relativeNotePaths(collection, includeDailyNotes)) {
    BlockProperties properties = propertiesIn(reader, path);
    if (properties.empty()) continue;
    const fs::path url = collection / path;
    const std::string title = LKNoteFilename::displayName(url);
    for (auto& [key, value] : properties) found.push_back({title, url, key, std::move(value)});
  }
  return found;
}

std::map<std::string, int64_t> usageCounts(const fs::path& collection,
                                           const std::vector<LKPropertyDefinition>& schema) {
  struct Use {
    int64_t notes = 0;
    const fs::path* last = nullptr;  // a note with a key in two cases counts once
  };
  const std::vector<NoteProperty> properties = scanAllProperties(collection);
  std::map<std::string, Use> uses;
  for (const LKPropertyDefinition& definition : schema) {
    uses[text::caseInsensitiveKey(definition.name)];
  }
  for (const NoteProperty& property : properties) {
    Use& use = uses[text::caseInsensitiveKey(property.key)];
    const bool isCounted = use.last != nullptr && *use.last == property.noteURL;
    if (!isCounted) ++use.notes;
    use.last = &property.noteURL;
  }
  std::map<std::string, int64_t> counts;
  for (const auto& [key, use] : uses) counts.emplace(key, use.notes);
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
  std::ranges::stable_sort(found, [](const NoteProperty& a, const NoteProperty& b) {
    return text::compareLocalized(a.noteTitle, b.noteTitle) < 0;
  });
  return found;
}

}  // namespace lk::PropertyScanner
