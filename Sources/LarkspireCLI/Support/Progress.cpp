#include "LarkspireCLI/Support/Progress.h"

#include <unistd.h>

#include <cstdio>
#include <utility>

namespace lk {

Progress::Progress(std::string activity, bool quiet)
    : activity_(std::move(activity)),
      isShown_(!quiet && isatty(STDERR_FILENO) != 0),
      next_(Clock::now() + std::chrono::seconds(1)) {}

Progress::~Progress() {
  clear();
}

void Progress::show(size_t done, size_t total) {
  if (!isShown_) return;
  const Clock::time_point now = Clock::now();
  if (now < next_) return;
  next_ = now + std::chrono::milliseconds(100);
  hasLine_ = true;
  const std::string line =
      "\r" + activity_ + " " + std::to_string(done) + " of " + std::to_string(total);
  std::fputs(line.c_str(), stderr);
}

void Progress::clear() {
  if (!hasLine_) return;
  hasLine_ = false;
  std::fputs("\r\x1b[K", stderr);  // back to the line's start, and nothing behind it
}

}  // namespace lk
