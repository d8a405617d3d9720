#include "LKCore/Collections/FolderRejection.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <system_error>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/Platform/Directories.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Platform/FolderWalk.h"
#include "LKCore/Platform/Volumes.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

constexpr int kMostOtherFiles = 100;
constexpr int kCountingEnds = 201;
constexpr int kMostExecutables = 4;
constexpr uint64_t kMegabyte = 1'048'576;
constexpr uint64_t kTooManyBytes = 500 * kMegabyte;

constexpr auto kSystemPaths =
    std::to_array<std::string_view>({"/", "/System", "/Library", "/usr", "/bin", "/sbin", "/var",
                                     "/private", "/etc", "/tmp", "/Applications", "/Volumes"});

// The same on this platform. They come after the home folder, which may be one of them.
constexpr auto kMoreSystemPaths =
    std::to_array<std::string_view>({"/boot", "/dev", "/home", "/lib", "/lib32", "/lib64", "/media",
                                     "/mnt", "/opt", "/proc", "/root", "/run", "/srv", "/sys"});

constexpr auto kSystemPathsInHome = std::to_array<std::string_view>(
    {"Library", "Library/Application Support", "Library/Caches", "Library/Preferences", ".Trash",
     "Applications", ".cache", ".config", ".local", ".local/share", ".local/share/Trash"});

constexpr auto kBroadPathsInHome =
    std::to_array<std::string_view>({"Desktop", "Documents", "Downloads"});

// A file and how the message names it.
struct ProjectMarker {
  std::string_view file;
  std::string_view name;
};
constexpr auto kProjectMarkers = std::to_array<ProjectMarker>({
    {"Package.swift", "Package.swift"},
    {"Cargo.toml", "Cargo.toml"},
    {"requirements.txt", "Python project"},
    {"setup.py", "Python project"},
    {"pyproject.toml", "Python project"},
    {"Makefile", "Makefile/CMake project"},
    {"CMakeLists.txt", "Makefile/CMake project"},
    {"go.mod", "go.mod"},
});

constexpr auto kExecutableExtensions =
    std::to_array<std::string_view>({"", "dylib", "so", "o", "a", "exe", "app", "framework"});

// A folder by its two names, to be compared with folders that may be links themselves.
class Candidate {
 public:
  explicit Candidate(const fs::path& path) : given_(tidy(path)), resolved_(resolved(path)) {}

  bool is(const fs::path& folder) const { return given_ == folder || resolved_ == folder; }
  bool isResolved(const fs::path& folder) const { return is(folder) || is(resolved(folder)); }

 private:
  // Absolute, without "." and "..", without a closing slash.
  static fs::path tidy(const fs::path& path) {
    std::error_code ignored;
    const fs::path absolute = fs::absolute(path, ignored).lexically_normal();
    return absolute.has_filename() || absolute == absolute.root_path() ? absolute
                                                                       : absolute.parent_path();
  }

  fs::path given_;
  fs::path resolved_;
};

std::optional<FolderRejection> unfitPlace(const fs::path& path) {
  const Candidate place(path);
  const fs::path home = directories::home();
  const auto is = [&](std::string_view folder) { return place.is(folder); };
  const auto isInHome = [&](std::string_view name) { return place.isResolved(home / name); };
  if (std::ranges::any_of(kSystemPaths, is)) return rejection::SystemPath{path};
  if (place.isResolved(home)) return rejection::BroadUserDirectory{path};
  if (std::ranges::any_of(kSystemPathsInHome, isInHome)) return rejection::SystemPath{path};
  if (std::ranges::any_of(kBroadPathsInHome, isInHome) ||
      place.isResolved(directories::documents())) {
    return rejection::BroadUserDirectory{path};
  }
  if (std::ranges::any_of(kMoreSystemPaths, is)) return rejection::SystemPath{path};
  return std::nullopt;
}

// The names in the folder; none when it cannot be listed.
std::vector<std::string> namesIn(const fs::path& folder) {
  std::vector<std::string> names;
  std::error_code failed;
  for (fs::directory_iterator it(folder, failed), end; !failed && it != end; it.increment(failed)) {
    names.push_back(it->path().filename().native());
  }
  return names;
}

std::optional<FolderRejection> softwareProject(const fs::path& path) {
  const std::vector<std::string> names = namesIn(path);
  const auto holds = [&](std::string_view name) { return std::ranges::count(names, name) > 0; };
  if (holds(".git")) return rejection::IsGitRepo{};
  const bool hasXcode = std::ranges::any_of(names, [](const std::string& name) {
    return name.ends_with(".xcodeproj") || name.ends_with(".xcworkspace");
  });
  if (hasXcode) return rejection::IsXcodeProject{};
  if (holds("package.json")) return rejection::IsNodeProject{};
  for (const ProjectMarker& marker : kProjectMarkers) {
    if (holds(marker.file)) return rejection::IsDevelopmentProject{std::string(marker.name)};
  }
  return std::nullopt;
}

// What a folder holds besides Markdown.
struct OtherFiles {
  int count = 0;
  int executables = 0;
  uint64_t bytes = 0;
};

std::string extensionOf(std::string_view name) {
  const size_t dot = name.rfind('.');
  return dot == std::string_view::npos ? "" : text::lowercased(name.substr(dot + 1));
}

OtherFiles countOtherFiles(const fs::path& path) {
  OtherFiles others;
  walkFolder(path, [&](const WalkEntry& entry) {
    if (entry.kind != WalkEntry::Kind::file) return WalkStep::proceed;
    const std::string extension = extensionOf(entry.name);
    if (extension == "md") return WalkStep::proceed;
    ++others.count;
    struct stat info {};
    if (fstatat(entry.folder, entry.name.data(), &info, AT_SYMLINK_NOFOLLOW) == 0) {
      others.bytes += static_cast<uint64_t>(info.st_size);
      const bool isExecutable = (info.st_mode & (S_IXUSR | S_IXGRP | S_IXOTH)) != 0;
      if (isExecutable && std::ranges::count(kExecutableExtensions, extension) > 0) {
        ++others.executables;
      }
    }
    return others.count == kCountingEnds ? WalkStep::stop : WalkStep::proceed;
  });
  return others;
}

std::optional<FolderRejection> unfitContent(const fs::path& path) {
  const OtherFiles others = countOtherFiles(path);
  if (others.count > kMostOtherFiles) return rejection::TooManyNonMarkdownFiles{others.count};
  if (others.executables > kMostExecutables) {
    return rejection::ContainsExecutables{others.executables};
  }
  if (others.bytes >= kTooManyBytes) {
    return rejection::TooLargeNonMarkdownContent{others.bytes / kMegabyte};
  }
  return std::nullopt;
}

struct Message {
  std::string operator()(const rejection::SystemPath& r) const {
    return "The path “" + r.path.string() +
           "” is a system directory and cannot be used as a collection.";
  }
  std::string operator()(const rejection::BroadUserDirectory& r) const {
    return "The path “" + r.path.string() +
           "” contains too many unrelated files. Choose a subfolder instead, or create a new "
           "collection inside it.";
  }
  std::string operator()(const rejection::TooManyNonMarkdownFiles& r) const {
    return "This folder contains " + std::to_string(r.count) +
           "+ non-Markdown files. It doesn’t look like a notes collection.";
  }
  std::string operator()(const rejection::ContainsExecutables& r) const {
    return "This folder contains " + std::to_string(r.count) +
           "+ executable files. It appears to be a software project, not a notes collection.";
  }
  std::string operator()(const rejection::TooLargeNonMarkdownContent& r) const {
    return "This folder contains " + std::to_string(r.megabytes) +
           " MB+ of non-Markdown content. It doesn’t look like a notes collection.";
  }
  std::string operator()(const rejection::IsDevelopmentProject& r) const {
    return "This folder contains “" + r.marker +
           "” — it’s a software project, not a notes collection.";
  }
  std::string operator()(const rejection::IsGitRepo&) const {
    return "This folder is a Git repository. Use a subfolder instead, or create a new collection.";
  }
  std::string operator()(const rejection::IsXcodeProject&) const {
    return "This folder contains an Xcode project. It’s a software project, not a notes "
           "collection.";
  }
  std::string operator()(const rejection::IsNodeProject&) const {
    return "This folder contains a Node.js project (package.json). It’s a software project, not a "
           "notes collection.";
  }
};

bool holdsFolder(const fs::path& folder, const char* name) {
  std::error_code ignored;
  return fs::is_directory(folder / name, ignored);
}

}  // namespace

std::optional<FolderRejection> validateFolder(const fs::path& path) {
  if (auto unfit = unfitPlace(path)) return unfit;
  if (auto project = softwareProject(path)) return project;
  return unfitContent(path);
}

std::string rejectionMessage(const FolderRejection& rejection) {
  return std::visit(Message{}, rejection);
}

bool detectObsidianVault(const fs::path& folder) {
  return holdsFolder(folder, ".obsidian");
}

bool detectLogseqGraph(const fs::path& folder) {
  return holdsFolder(folder, "logseq");
}

bool detectCloudSync(const fs::path& path) {
  return resolved(path).string().find("/Library/Mobile Documents/") != std::string::npos;
}

bool detectRemovable(const fs::path& path) {
  return isOnRemovableVolume(path);
}

}  // namespace lk
