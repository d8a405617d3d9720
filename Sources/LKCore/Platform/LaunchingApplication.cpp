#include "LKCore/Platform/LaunchingApplication.h"

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <set>
#include <system_error>

#include "LKCore/Base/Error.h"
#include "LKCore/Platform/Files.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

fs::path processFolder(pid_t process) {
  return fs::path("/proc") / std::to_string(process);
}

// Of "41 (a name) S 12 ...", the 12. The name may itself hold blanks and brackets.
std::optional<pid_t> parentOf(pid_t process) {
  static constexpr size_t kStateAndBlanks = 4;  // ") S "
  try {
    const std::string line = readFileStart(processFolder(process) / "stat", 4096);
    const size_t bracket = line.rfind(')');
    if (bracket == std::string::npos) return std::nullopt;
    const char* start = line.data() + std::min(bracket + kStateAndBlanks, line.size());
    pid_t parent = 0;
    const auto [end, error] = std::from_chars(start, line.data() + line.size(), parent);
    return error == std::errc() ? std::optional(parent) : std::nullopt;
  } catch (const Error&) {
    return std::nullopt;
  }
}

std::optional<fs::path> executableOf(pid_t process) {
  std::error_code error;
  fs::path path = fs::read_symlink(processFolder(process) / "exe", error);
  return error ? std::nullopt : std::optional(std::move(path));
}

// "Writer" of "/opt/Writer.app/Contents/bin/writer".
std::optional<std::string> bundleName(const fs::path& executable) {
  static constexpr std::string_view kInside = ".app/Contents/";
  const std::string path = executable.string();
  const size_t end = path.find(kInside);
  if (end == std::string::npos) return std::nullopt;
  const std::string name = fs::path(path.substr(0, end)).filename().string();
  return name.empty() ? std::nullopt : std::optional(name);
}

}  // namespace

ProcessTable ProcessTable::ofThisMachine() {
  return {.parent = parentOf, .executable = executableOf};
}

std::optional<std::string> applicationName(pid_t start, const ProcessTable& processes) {
  static constexpr size_t kMaxLevels = 31;
  std::set<pid_t> seen;
  std::optional<pid_t> process = start;
  while (process && *process > 1 && seen.size() < kMaxLevels && seen.insert(*process).second) {
    if (const auto executable = processes.executable(*process)) {
      if (auto name = bundleName(*executable)) return name;
    }
    process = processes.parent(*process);
  }
  return std::nullopt;
}

std::optional<std::string> launchingApplicationName() {
  return applicationName(getppid(), ProcessTable::ofThisMachine());
}

}  // namespace lk
