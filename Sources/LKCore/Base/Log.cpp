#include "LKCore/Base/Log.h"

#include <syslog.h>

#include <algorithm>

namespace lk::log {

namespace {

// The longest trace worth keeping, in bytes; paths and causes fit.
constexpr size_t kLongest = 4096;

void write(int priority, std::string_view message) {
  static const bool opened = [] {
    openlog("com.larkspire", LOG_PID, LOG_USER);
    return true;
  }();
  if (!opened) return;
  syslog(priority, "%.*s", static_cast<int>(std::min(message.size(), kLongest)), message.data());
}

}  // namespace

void debug(std::string_view message) {
  write(LOG_DEBUG, message);
}
void warning(std::string_view message) {
  write(LOG_WARNING, message);
}
void error(std::string_view message) {
  write(LOG_ERR, message);
}

}  // namespace lk::log
