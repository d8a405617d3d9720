#pragma once

// One pass over the files under a folder: the listing that finding notes and judging folders
// share. It costs one `open` a folder and no call a file.
//
// Hidden entries (names beginning with ".") are passed over, except for the folders named in
// `WalkOptions::hiddenFolders`. Packages are reported as one entry and not entered. A symbolic
// link is reported as one and never followed. Entries come in the order of the file system, all
// of a folder before those of its sub-folders.
//
//     walkFolder(root, [&](const WalkEntry& entry) {
//       if (entry.kind == WalkEntry::Kind::file) names.emplace_back(entry.relativePath);
//       return WalkStep::proceed;
//     });

#include <filesystem>
#include <functional>
#include <string_view>
#include <vector>

namespace lk {

struct WalkEntry {
  enum class Kind {
    file,          // a regular file
    symbolicLink,  // to anything, or to nothing
    package,       // a folder that stands for one document or program
    other,         // a FIFO, a socket, a device
  };

  Kind kind = Kind::file;
  // Both are UTF-8 and end with the call. The relative path has no leading "/".
  std::string_view relativePath;  // "Projects/Plan.md"
  std::string_view name;          // "Plan.md", its last piece, followed by a NUL byte
  // The open folder that holds the entry, for openat, fstatat and their like with `name.data()`;
  // it belongs to the walk and ends with the call.
  int folder = -1;
};

enum class WalkStep { proceed, stop };

// What could not be walked. The walk goes on with the next entry.
struct WalkProblem {
  enum class Kind {
    unreadableFolder,  // could not be opened or listed
    nameNotUTF8,       // a file or folder, passed over
  };

  Kind kind = Kind::unreadableFolder;
  std::string_view relativePath;  // raw bytes; empty for the walked folder itself
  int code = 0;                   // errno of unreadableFolder
};

struct WalkOptions {
  // Names of hidden folders that are entered wherever they lie, such as ".daily".
  std::vector<std::string_view> hiddenFolders;
  std::function<void(const WalkProblem&)> onProblem;
  // Names of folders that are passed over wherever they lie.
  std::vector<std::string_view> skippedFolders = {};
};

// Calls `visit` for every entry under `folder` that is no folder. True when the walk came to its
// end, false when `visit` stopped it. Fails only with what `visit` and `onProblem` throw: a folder
// that is missing or cannot be read is a problem, not an error.
bool walkFolder(const std::filesystem::path& folder,
                const std::function<WalkStep(const WalkEntry&)>& visit,
                const WalkOptions& options = {});

// True for a folder's name with the extension of a package, such as "Trip.textbundle".
bool isPackageName(std::string_view name);

}  // namespace lk
