#pragma once

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace lk {

// What the search for the launching application asks about a process; nothing when the process
// has gone or may not be looked at.
struct ProcessTable {
  std::function<std::optional<pid_t>(pid_t)> parent;
  std::function<std::optional<std::filesystem::path>(pid_t)> executable;

  // The processes of this machine, from /proc.
  static ProcessTable ofThisMachine();
};

// The name of the application bundle ("NAME.app") that `start` or a process above it runs from.
// Looks at no more than 31 processes, and stops at process 1 and at one already seen. Nothing is
// the normal answer: under ssh, in a terminal, in a scheduled job.
std::optional<std::string> applicationName(pid_t start, const ProcessTable& processes);

// The same from the process that started this one, for messages.
std::optional<std::string> launchingApplicationName();

}  // namespace lk
