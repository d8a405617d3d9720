#include "LarkspireCLI/Support/Progress.h"

#include <unistd.h>

#include <cstdio>
#include <utility>

namespace lk {

namespace {

constexpr const char* kEmptyLine = "\r\x1b[K";  // back to the line's start, and nothing behind it

}  // namespace

Progress::Progress(std::string activity, bool quiet)
    : activity_(std::move(activity)),
      isShown_(!quiet && isatty(STDERR_FILENO) != 0),
      next_(Clock::now() + std::chrono::seconds(1)) {}

Progress::~Progress() {
  teller_ = {};  // has ended then, and writes no more
  clear();
}

void Progress::show(size_t done, size_t total) {
  if (!isShown_) return;
  const Clock::time_point now = Clock::now();
  const std::lock_guard guard(lock_);
  if (now < next_) return;
  next_ = now + std::chrono::milliseconds(100);
  writeLine(activity_ + " " + std::to_string(done) + " of " + std::to_string(total));
}

void Progress::stage(std::string_view words) {
  if (!isShown_) return;
  {
    const std::lock_guard guard(lock_);
    stage_ = words;
    isStageTold_ = false;
  }
  changed_.notify_all();
  if (teller_.joinable()) return;
  teller_ = std::jthread([this](const std::stop_token& ended) { tellStages(ended); });
}

void Progress::clear() {
  const std::lock_guard guard(lock_);
  isStageTold_ = true;  // it is over
  if (!hasLine_) return;
  hasLine_ = false;
  std::fputs(kEmptyLine, stderr);
}

void Progress::writeLine(const std::string& text) {
  hasLine_ = true;
  std::fputs((kEmptyLine + text).c_str(), stderr);
}

void Progress::tellStages(const std::stop_token& ended) {
  std::unique_lock guard(lock_);
  changed_.wait_until(guard, ended, next_, [] { return false; });
  while (!ended.stop_requested()) {
    if (!isStageTold_) writeLine(stage_ + " ...");
    isStageTold_ = true;
    changed_.wait(guard, ended, [this] { return !isStageTold_; });
  }
}

}  // namespace lk
