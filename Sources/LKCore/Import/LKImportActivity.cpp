#include "LKCore/Import/LKImportActivity.h"

#include <exception>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "LKCore/Base/Log.h"
#include "LKCore/Base/Notices.h"
#include "LKCore/Platform/Files.h"

namespace lk::LKImportActivity {

namespace {

constexpr int64_t kRecordSeconds = 600;
constexpr int64_t kSecondsBetweenRecordPrunings = 30;

struct Activity {
  std::mutex mutex;
  Clock clock = Instant::now;
  size_t running = 0;
  Instant lastPruning;
  std::unordered_map<std::string, std::vector<Instant>> written;  // by path, oldest first
};

Activity& activity() {
  static Activity instance;
  return instance;
}

bool isForgotten(Instant written, Instant now) {
  return now.seconds - written.seconds >= kRecordSeconds;
}

void pruneRecords(Activity& all, Instant now) {
  if (now.seconds - all.lastPruning.seconds < kSecondsBetweenRecordPrunings) return;
  all.lastPruning = now;
  for (auto& [path, times] : all.written) {
    std::erase_if(times, [&](Instant time) { return isForgotten(time, now); });
  }
  std::erase_if(all.written, [](const auto& entry) { return entry.second.empty(); });
}

}  // namespace

void begin() {
  const std::lock_guard guard(activity().mutex);
  ++activity().running;
}

void end() {
  {
    const std::lock_guard guard(activity().mutex);
    if (activity().running == 0) return;
    if (--activity().running > 0) return;
  }
  notices::post(lkImportDidFinish);
}

bool isActive() {
  const std::lock_guard guard(activity().mutex);
  return activity().running > 0;
}

Scope::Scope() {
  begin();
}

Scope::~Scope() {
  try {
    end();
  } catch (const std::exception& error) {
    log::warning(std::string("after an import: ") + error.what());
  }
}

void recordWritten(const std::filesystem::path& url) {
  std::string path = resolved(url).string();
  const std::lock_guard guard(activity().mutex);
  const Instant now = activity().clock();
  pruneRecords(activity(), now);
  activity().written[std::move(path)].push_back(now);
}

bool consumeImportEcho(const std::filesystem::path& url) {
  const std::string path = resolved(url).string();
  const std::lock_guard guard(activity().mutex);
  const auto found = activity().written.find(path);
  if (found == activity().written.end()) return false;
  std::vector<Instant>& times = found->second;
  const Instant newest = times.back();
  times.pop_back();
  if (times.empty()) activity().written.erase(found);
  return !isForgotten(newest, activity().clock());
}

size_t recordCount() {
  const std::lock_guard guard(activity().mutex);
  size_t sum = 0;
  for (const auto& [path, times] : activity().written) sum += times.size();
  return sum;
}

void reset(Clock clock) {
  const std::lock_guard guard(activity().mutex);
  activity().clock = clock ? std::move(clock) : Clock(Instant::now);
  activity().running = 0;
  activity().lastPruning = {};
  activity().written.clear();
}

}  // namespace lk::LKImportActivity
