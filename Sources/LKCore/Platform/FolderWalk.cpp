#include "LKCore/Platform/FolderWalk.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <string>

#include "LKCore/Base/Text.h"

namespace lk {

namespace {

// Folders that their programs show as one document; a user does not keep notes inside them.
constexpr std::array<std::string_view, 14> kPackageExtensions = {
    "app",    "appex", "bundle",       "framework",  "kext",      "photoslibrary", "playground",
    "plugin", "rtfd",  "sparsebundle", "textbundle", "xcodeproj", "xcworkspace",   "xpc"};

constexpr int kOpenFolder = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

struct CloseFolder {
  void operator()(DIR* folder) const noexcept { closedir(folder); }
};
using OpenFolder = std::unique_ptr<DIR, CloseFolder>;

// Null with errno set when the folder cannot be opened.
OpenFolder openFolder(int base, const char* path, int flags) {
  const int descriptor = openat(base, path, flags);
  if (descriptor < 0) return nullptr;
  DIR* folder = fdopendir(descriptor);
  if (folder == nullptr) {
    const int code = errno;
    close(descriptor);
    errno = code;
  }
  return OpenFolder(folder);
}

// The type of an entry; some file systems do not tell it in the listing.
unsigned char typeOf(const dirent& entry, int folder) {
  if (entry.d_type != DT_UNKNOWN) return entry.d_type;
  struct stat info {};
  if (fstatat(folder, entry.d_name, &info, AT_SYMLINK_NOFOLLOW) != 0) return DT_UNKNOWN;
  return static_cast<unsigned char>(IFTODT(info.st_mode));
}

// Folders wait as paths relative to the walked one, so that a deep tree holds two descriptors and
// not one for each level.
class Walk {
 public:
  Walk(const std::function<WalkStep(const WalkEntry&)>& visit, const WalkOptions& options)
      : visit_(visit), options_(options) {}

  bool run(const std::filesystem::path& folder) {
    const OpenFolder root = openFolder(AT_FDCWD, folder.c_str(), kOpenFolder);
    if (!root) {
      report(WalkProblem::Kind::unreadableFolder, errno);
      return true;
    }
    if (!list(root.get())) return false;
    while (!waiting_.empty()) {
      path_ = std::move(waiting_.back());
      waiting_.pop_back();
      const OpenFolder next =
          openFolder(dirfd(root.get()), path_.c_str(), kOpenFolder | O_NOFOLLOW);
      if (!next) {
        report(WalkProblem::Kind::unreadableFolder, errno);
        continue;
      }
      path_.push_back('/');
      if (!list(next.get())) return false;
    }
    return true;
  }

 private:
  // Visits one folder's entries; `path_` is the folder's, empty or with a closing slash.
  bool list(DIR* folder) {
    const size_t base = path_.size();
    while (true) {
      errno = 0;
      const dirent* entry = readdir(folder);
      if (entry == nullptr) break;
      path_.resize(base);
      path_ += entry->d_name;
      if (!accept(*entry, base, dirfd(folder))) return false;
    }
    const int code = errno;
    path_.resize(base == 0 ? 0 : base - 1);
    if (code != 0) report(WalkProblem::Kind::unreadableFolder, code);
    return true;
  }

  // False when the visitor stops the walk.
  bool accept(const dirent& entry, size_t base, int folder) {
    const std::string_view name = std::string_view(path_).substr(base);
    const bool hidden = name.front() == '.';
    if (hidden && !std::ranges::count(options_.hiddenFolders, name)) return true;
    if (!text::isValidUTF8(name)) {
      report(WalkProblem::Kind::nameNotUTF8, 0);
      return true;
    }
    const unsigned char type = typeOf(entry, folder);
    if (type == DT_DIR && std::ranges::count(options_.skippedFolders, name) > 0) return true;
    if (type == DT_DIR && !isPackageName(name)) {
      waiting_.push_back(path_);
      return true;
    }
    if (hidden) return true;
    const WalkEntry found{kindOf(type), path_, name, folder};
    return visit_(found) == WalkStep::proceed;
  }

  static WalkEntry::Kind kindOf(unsigned char type) {
    if (type == DT_REG) return WalkEntry::Kind::file;
    if (type == DT_LNK) return WalkEntry::Kind::symbolicLink;
    if (type == DT_DIR) return WalkEntry::Kind::package;
    return WalkEntry::Kind::other;
  }

  void report(WalkProblem::Kind kind, int code) const {
    if (options_.onProblem) options_.onProblem({kind, path_, code});
  }

  const std::function<WalkStep(const WalkEntry&)>& visit_;
  const WalkOptions& options_;
  std::string path_;
  std::vector<std::string> waiting_;
};

}  // namespace

bool walkFolder(const std::filesystem::path& folder,
                const std::function<WalkStep(const WalkEntry&)>& visit,
                const WalkOptions& options) {
  return Walk(visit, options).run(folder);
}

bool isPackageName(std::string_view name) {
  const size_t dot = name.rfind('.');
  if (dot == std::string_view::npos) return false;
  std::string extension(name.substr(dot + 1));
  for (char& c : extension) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return std::ranges::count(kPackageExtensions, extension) > 0;
}

}  // namespace lk
