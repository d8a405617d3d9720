#include "LKCore/Platform/Directories.h"

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>

namespace lk::directories {

namespace fs = std::filesystem;

namespace {

// An absolute path from the environment; XDG says that a relative one is to be ignored.
std::optional<fs::path> environmentPath(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr || value[0] != '/') return std::nullopt;
  return fs::path(value);
}

// The value of a line `NAME="$HOME/..."` or `NAME="/..."` of user-dirs.dirs.
std::optional<fs::path> userDirectory(std::string_view name) {
  std::ifstream in(configuration() / "user-dirs.dirs");
  const std::string start = std::string(name) + "=\"";
  std::optional<fs::path> found;
  for (std::string line; std::getline(in, line);) {
    if (!line.starts_with(start)) continue;
    const size_t end = line.find('"', start.size());
    if (end == std::string::npos) continue;
    const std::string value = line.substr(start.size(), end - start.size());
    static constexpr std::string_view kHome = "$HOME/";
    if (value.starts_with(kHome)) {
      found = home() / value.substr(kHome.size());
    } else if (value.starts_with('/')) {
      found = value;
    }
  }
  return found;
}

}  // namespace

fs::path home() {
  if (const auto path = environmentPath("HOME")) return *path;
  std::array<char, 4096> buffer{};
  passwd entry{};
  passwd* result = nullptr;
  if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &result) == 0 &&
      result != nullptr) {
    return result->pw_dir;
  }
  return "/";
}

fs::path applicationSupport() {
  return environmentPath("XDG_DATA_HOME").value_or(home() / ".local/share");
}

fs::path documents() {
  return userDirectory("XDG_DOCUMENTS_DIR").value_or(home() / "Documents");
}

fs::path configuration() {
  return environmentPath("XDG_CONFIG_HOME").value_or(home() / ".config");
}

fs::path scratch() {
  return environmentPath("TMPDIR").value_or("/tmp");
}

std::optional<fs::path> ubiquityDocuments() {
  return std::nullopt;
}

std::optional<fs::path> groupContainer() {
  return std::nullopt;
}

}  // namespace lk::directories
