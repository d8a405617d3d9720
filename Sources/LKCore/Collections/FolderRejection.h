#pragma once

// Guards against pointing the system at a folder that is no notes folder: a system directory, a
// home, a software project, a heap of other files.
//
//     if (const auto rejection = validateFolder(path)) throw Refused(rejectionMessage(*rejection));

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <variant>

namespace lk {

namespace rejection {

struct SystemPath {
  std::filesystem::path path;
  bool operator==(const SystemPath&) const = default;
};
struct BroadUserDirectory {
  std::filesystem::path path;
  bool operator==(const BroadUserDirectory&) const = default;
};
struct TooManyNonMarkdownFiles {
  int count = 0;  // 101 to 201, where counting stops
  bool operator==(const TooManyNonMarkdownFiles&) const = default;
};
struct ContainsExecutables {
  int count = 0;
  bool operator==(const ContainsExecutables&) const = default;
};
struct TooLargeNonMarkdownContent {
  uint64_t megabytes = 0;  // of 1,048,576 bytes
  bool operator==(const TooLargeNonMarkdownContent&) const = default;
};
struct IsDevelopmentProject {
  std::string marker;
  bool operator==(const IsDevelopmentProject&) const = default;
};
struct IsGitRepo {
  bool operator==(const IsGitRepo&) const = default;
};
struct IsXcodeProject {
  bool operator==(const IsXcodeProject&) const = default;
};
struct IsNodeProject {
  bool operator==(const IsNodeProject&) const = default;
};

}  // namespace rejection

using FolderRejection =
    std::variant<rejection::SystemPath, rejection::BroadUserDirectory,
                 rejection::TooManyNonMarkdownFiles, rejection::ContainsExecutables,
                 rejection::TooLargeNonMarkdownContent, rejection::IsDevelopmentProject,
                 rejection::IsGitRepo, rejection::IsXcodeProject, rejection::IsNodeProject>;

// The first reason against the folder, or nothing when it is acceptable. A folder that cannot be
// read, or is not there, is acceptable.
std::optional<FolderRejection> validateFolder(const std::filesystem::path& path);

// The reason as a sentence for the user.
std::string rejectionMessage(const FolderRejection& rejection);

// True when the folder belongs to another note program, which keeps its own files in it.
bool detectObsidianVault(const std::filesystem::path& folder);
bool detectLogseqGraph(const std::filesystem::path& folder);

// True for a path in the cloud folder, symbolic links resolved.
bool detectCloudSync(const std::filesystem::path& path);

// True when the system says that the volume of the path is removable.
bool detectRemovable(const std::filesystem::path& path);

}  // namespace lk
