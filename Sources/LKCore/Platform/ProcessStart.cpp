#include "LKCore/Platform/ProcessStart.h"

#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <system_error>

#include "LKCore/Base/Text.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

// What the kernel refuses leaves the program the nobody of its own user namespace.
void writeKernelFile(const char* path, std::string_view text) noexcept {
  const int file = open(path, O_WRONLY | O_CLOEXEC);
  if (file < 0) return;
  (void)!write(file, text.data(), text.size());
  close(file);
}

void writeSameNumber(const char* path, unsigned number) noexcept {
  std::array<char, 64> line{};
  const int size = std::snprintf(line.data(), line.size(), "%u %u 1", number, number);
  writeKernelFile(path, {line.data(), static_cast<size_t>(size)});
}

}  // namespace

std::optional<fs::path> programOnPath(std::string_view name) {
  const char* const folders = std::getenv("PATH");
  if (folders == nullptr) return {};
  for (const std::string_view folder : text::split(folders, ':')) {
    if (!folder.starts_with('/')) continue;
    fs::path path = fs::path(folder) / name;
    std::error_code error;
    if (fs::is_regular_file(path, error) && access(path.c_str(), X_OK) == 0) return path;
  }
  return {};
}

void leaveNetwork() noexcept {
  if (unshare(CLONE_NEWNET) == 0) return;
  const unsigned user = geteuid();
  const unsigned group = getegid();
  if (unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0) return;
  writeKernelFile("/proc/self/setgroups", "deny");
  writeSameNumber("/proc/self/uid_map", user);
  writeSameNumber("/proc/self/gid_map", group);
}

int millisecondsUntil(std::chrono::steady_clock::time_point deadline) noexcept {
  constexpr std::chrono::milliseconds::rep kHour = 3'600'000;
  const auto left =
      std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
  return static_cast<int>(std::clamp<std::chrono::milliseconds::rep>(left.count(), 0, kHour));
}

}  // namespace lk
