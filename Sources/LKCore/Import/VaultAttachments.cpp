// Which files the notes of a vault show, and where they are.

#include <algorithm>
#include <set>

#include "LKCore/Base/Json.h"
#include "LKCore/Base/Log.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Import/LKObsidianImporter.h"
#include "LKCore/Import/VaultReferences.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Platform/FolderWalk.h"

namespace lk::LKObsidianImporter {

namespace fs = std::filesystem;

namespace {

// References that name more levels than this are looked for by their whole path alone, so that a
// path of a thousand levels does not make a thousand long keys.
constexpr int kDeepestTail = 32;

std::optional<std::string> attachmentFolderOf(const fs::path& root) {
  static constexpr uint64_t kMaxSettingsBytes = uint64_t{1024} * 1024;
  const fs::path file = root / settingsFolder / "app.json";
  try {
    if (!nameIsTaken(file)) return std::nullopt;
    const Json settings = parseJson(readFileItself(file, kMaxSettingsBytes));
    return settings.is_object() ? stringMember(settings, "attachmentFolderPath") : std::nullopt;
  } catch (const Error& error) {
    log::debug("a vault's settings are not read: " + error.description());
    return std::nullopt;
  }
}

std::string relativeTo(const fs::path& root, const fs::path& url) {
  return url.lexically_relative(root).generic_string();
}

bool isBareName(const std::string& path) {
  return path.find('/') == std::string::npos;
}

}  // namespace

std::vector<fs::path> collectImages(const fs::path& rootURL) {
  std::vector<std::string> paths;
  WalkOptions options;
  options.skippedFolders.assign(skipFolders.begin(), skipFolders.end());
  walkFolder(
      rootURL,
      [&](const WalkEntry& entry) {
        const bool isFile = entry.kind == WalkEntry::Kind::file;
        if (isFile && LKImportEngine::isAllowedAttachment(entry.name)) {
          paths.emplace_back(entry.relativePath);
        }
        return WalkStep::proceed;
      },
      options);
  std::ranges::sort(paths);
  std::vector<fs::path> urls;
  urls.reserve(paths.size());
  for (const std::string& path : paths) urls.push_back(rootURL / path);
  return urls;
}

AttachmentIndex::AttachmentIndex(const fs::path& rootURL, const std::vector<fs::path>& candidates)
    : root_(rootURL), attachmentFolder_(attachmentFolderOf(rootURL)) {
  for (const fs::path& candidate : candidates) {
    const std::string path = relativeTo(root_, candidate);
    byPath_.emplace(path, candidate);
    const std::string key = text::caseInsensitiveKey(path);
    size_t slash = key.size();
    for (int level = 0; level < kDeepestTail && slash != std::string::npos; ++level) {
      slash = slash == 0 ? std::string::npos : key.rfind('/', slash - 1);
      byTail_.emplace(slash == std::string::npos ? key : key.substr(slash + 1), candidate);
    }
  }
}

const fs::path* AttachmentIndex::at(const fs::path& relative) const {
  const auto found = byPath_.find(relative.lexically_normal().generic_string());
  return found == byPath_.end() ? nullptr : &found->second;
}

const fs::path* AttachmentIndex::ofPath(const std::string& path, const fs::path& noteFolder) const {
  const std::string fromRoot = path.substr(std::min(path.find_first_not_of('/'), path.size()));
  if (fromRoot.empty()) return nullptr;
  if (attachmentFolder_ && isBareName(path)) {
    const std::string_view setting = *attachmentFolder_;
    const bool isBesideNote = setting.starts_with("./");
    const size_t start = isBesideNote ? 2 : setting.find_first_not_of('/');
    const fs::path folder = setting.substr(std::min(start, setting.size()));
    const fs::path place = isBesideNote ? noteFolder / folder : folder;
    if (const fs::path* file = at(place / path)) return file;
  }
  if (fromRoot.size() == path.size()) {
    if (const fs::path* file = at(noteFolder / path)) return file;
  }
  if (const fs::path* file = at(fromRoot)) return file;
  const std::string key = text::caseInsensitiveKey(fromRoot);
  for (const std::string& tail : {key, key.substr(key.rfind('/') + 1)}) {
    if (const auto found = byTail_.find(tail); found != byTail_.end()) return &found->second;
  }
  return nullptr;
}

const fs::path* AttachmentIndex::resolve(std::string_view reference, const fs::path& from) const {
  const std::string path = LKImportEngine::percentDecoded(text::trimmed(reference));
  const fs::path folder = relativeTo(root_, from.parent_path());
  if (const fs::path* file = ofPath(path, folder)) return file;
  const size_t fragment = path.find('#');
  return fragment == std::string::npos ? nullptr : ofPath(path.substr(0, fragment), folder);
}

AttachmentPlan planAttachments(const std::vector<ObsidianEntry>& entries, const fs::path& rootURL,
                               const std::vector<fs::path>& candidates) {
  const AttachmentIndex index(rootURL, candidates);
  AttachmentPlan plan;
  std::set<fs::path> sources;
  for (const ObsidianEntry& entry : entries) {
    std::vector<AttachmentRef> found;
    const auto add = [&](std::string_view line, const Reference& reference, bool isWiki) {
      const std::string_view key = reference.target.of(line);
      const fs::path* const source = index.resolve(key, entry.url);
      if (source == nullptr) {
        ++plan.unresolvedCount;
        return;
      }
      sources.insert(*source);
      found.push_back({std::string(key), *source, isWiki});
    };
    LKImportEngine::rewriteOutsideFences(entry.body, [&](std::string_view line, std::string&) {
      if (line.find("![") == std::string_view::npos) return;
      forEachWikiEmbed(line, [&](const Reference& each) { add(line, each, true); });
      forEachStandardImage(line, [&](const Reference& each) { add(line, each, false); });
    });
    if (!found.empty()) plan.perNote.emplace(entry.url, std::move(found));
  }
  plan.sources.assign(sources.begin(), sources.end());
  return plan;
}

std::map<std::string, std::string, std::less<>> importImages(const std::vector<fs::path>& urls,
                                                             const fs::path& folder) {
  std::map<std::string, std::string, std::less<>> names;
  for (const auto& [source, name] : LKImportEngine::copyAttachments(urls, folder)) {
    names.emplace(source.filename().string(), name);
  }
  return names;
}

}  // namespace lk::LKObsidianImporter
