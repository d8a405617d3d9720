#include "LKCore/NoteFiles/LKOwnFileContent.h"

#include <algorithm>
#include <mutex>
#include <unordered_map>
#include <utility>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKContentHash.h"
#include "LKCore/NoteFiles/LKNoteFilename.h"
#include "LKCore/Platform/Files.h"

namespace lk::LKOwnFileContent {

namespace fs = std::filesystem;

namespace {

constexpr int64_t kKeptSeconds = 600;
constexpr int64_t kSecondsBetweenPrunings = 30;
constexpr size_t kMemoLimit = 256;  // folders; a process writes into few

struct Write {
  std::string digest;
  Instant at;
};

struct Table {
  std::mutex mutex;
  Clock clock = Instant::now;
  Instant lastPruning;
  std::unordered_map<std::string, std::vector<Write>> writes;
  std::unordered_map<std::string, std::string> resolvedFolders;
};

Table& table() {
  static Table instance;
  return instance;
}

Instant after(Instant instant, int64_t seconds) {
  return {.seconds = instant.seconds + seconds, .nanoseconds = instant.nanoseconds};
}

std::optional<std::string> knownFolder(const std::string& folder) {
  const std::lock_guard guard(table().mutex);
  const auto found = table().resolvedFolders.find(folder);
  if (found == table().resolvedFolders.end()) return std::nullopt;
  return found->second;
}

// The lock is not held while the disk is asked.
std::string resolvedFolder(const std::string& folder) {
  if (std::optional<std::string> known = knownFolder(folder)) return *known;
  std::string result = resolved(folder.empty() ? fs::path(".") : fs::path(folder)).string();
  const std::lock_guard guard(table().mutex);
  if (table().resolvedFolders.size() >= kMemoLimit) table().resolvedFolders.clear();
  table().resolvedFolders.emplace(folder, result);
  return result;
}

std::string keyOf(const fs::path& url) {
  return resolvedFolder(url.parent_path().string()) + '/' +
         text::caseInsensitiveKey(url.filename().string());
}

void prune(Table& all, Instant now) {
  if (now <= after(all.lastPruning, kSecondsBetweenPrunings)) return;
  all.lastPruning = now;
  const auto isOld = [&](const Write& write) { return now > after(write.at, kKeptSeconds); };
  for (auto& [key, writes] : all.writes) std::erase_if(writes, isOld);
  std::erase_if(all.writes, [](const auto& entry) { return entry.second.empty(); });
}

}  // namespace

void record(std::string_view data, const fs::path& url) {
  if (LKNoteFilename::hasNoteExtension(url.filename().native()))
    recordDigest(computeRawDigest(data), url);
}

void recordDigest(std::string digest, const fs::path& url) {
  std::string key = keyOf(url);
  Table& all = table();
  const std::lock_guard guard(all.mutex);
  const Instant now = all.clock();
  prune(all, now);
  all.writes[std::move(key)].push_back({.digest = std::move(digest), .at = now});
}

bool wrote(std::string_view digest, const fs::path& url) {
  const std::string key = keyOf(url);
  Table& all = table();
  const std::lock_guard guard(all.mutex);
  const auto found = all.writes.find(key);
  if (found == all.writes.end()) return false;
  const Instant now = all.clock();
  return std::ranges::any_of(found->second, [&](const Write& write) {
    return write.digest == digest && now < after(write.at, kKeptSeconds);
  });
}

size_t count() {
  Table& all = table();
  const std::lock_guard guard(all.mutex);
  size_t sum = 0;
  for (const auto& [key, writes] : all.writes) sum += writes.size();
  return sum;
}

void reset(Clock clock) {
  Table& all = table();
  const std::lock_guard guard(all.mutex);
  all.clock = clock ? std::move(clock) : Clock(Instant::now);
  all.lastPruning = {};
  all.writes.clear();
  all.resolvedFolders.clear();
}

}  // namespace lk::LKOwnFileContent
