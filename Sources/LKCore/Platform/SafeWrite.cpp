#include "LKCore/Platform/SafeWrite.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>

#include "LKCore/Base/Digest.h"
#include "LKCore/Base/UUID.h"
#include "LKCore/Platform/Descriptor.h"
#include "LKCore/Platform/Files.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

// --- Places --------------------------------------------------------------------------------------

// A name in an open folder; the folder may be renamed meanwhile.
struct Place {
  fs::path path;  // for messages
  Descriptor folder;
  std::string name;

  [[noreturn]] void fail(int code) const { throw FileError(path, code); }

  // What stands under a name in the folder, a link itself; nothing when the name is free.
  std::optional<struct stat> info(const std::string& entry) const {
    struct stat result {};
    if (fstatat(folder.get(), entry.c_str(), &result, AT_SYMLINK_NOFOLLOW) == 0) return result;
    if (errno != ENOENT) fail(errno);
    return std::nullopt;
  }
};

Place openPlace(const fs::path& path) {
  Place place{.path = path, .folder = {}, .name = path.filename().string()};
  if (place.name.empty() || place.name == "." || place.name == "..") place.fail(EISDIR);
  // A NUL byte would end the name early and meet another file.
  if (path.native().find('\0') != std::string::npos) place.fail(EINVAL);
  const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
  const auto open = [&](int flags) {
    return Descriptor(
        uninterrupted([&] { return ::open(folder.c_str(), flags | O_DIRECTORY | O_CLOEXEC); }));
  };
  place.folder = open(O_RDONLY);
  if (!place.folder && errno == EACCES) place.folder = open(O_PATH);  // may be searched, not read
  if (!place.folder) place.fail(errno);
  return place;
}

// The file that is meant: a link's target, also when there is no such file yet.
fs::path followLinks(fs::path path) {
  static constexpr int kMaxLinks = 40;  // the kernel's own limit
  const fs::path asked = path;
  for (int i = 0; i < kMaxLinks; ++i) {
    std::error_code noLink;
    const fs::path target = fs::read_symlink(path, noLink);
    if (noLink) return path;
    path = path.parent_path() / target;
  }
  throw FileError(asked, ELOOP);
}

// --- What a new file takes over from an old one --------------------------------------------------

constexpr const char* kAccessList = "system.posix_acl_access";

struct Original {
  struct stat info {};
  FileAttributes attributes;
  std::optional<std::string> accessList;
};

Original readOriginal(const Place& place, const struct stat& info) {
  Original original;
  original.info = info;
  const Descriptor file(uninterrupted([&] {
    return openat(place.folder.get(), place.name.c_str(),
                  O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
  }));
  if (!file) return original;
  original.attributes = readAttributes(file);
  // Without its access list, the mode's group bits would let in the whole group.
  original.accessList = readAttribute(file, kAccessList);
  return original;
}

// The file to be replaced, if there is one; refuses what is not to be replaced.
std::optional<Original> replaceable(const Place& place) {
  const std::optional<struct stat> info = place.info(place.name);
  if (!info) return std::nullopt;
  if (S_ISDIR(info->st_mode)) place.fail(EISDIR);
  if (!S_ISREG(info->st_mode)) place.fail(EINVAL);
  if (faccessat(place.folder.get(), place.name.c_str(), W_OK, AT_EACCESS) != 0) place.fail(errno);
  return readOriginal(place, *info);
}

// --- Names ---------------------------------------------------------------------------------------

// The same for every write of the file, so that a dead writer's remains are found again; short,
// because the file's own name may have all the bytes that a name can have.
std::string temporaryName(const std::string& name) {
  return ".lk-" + sha256Hex(name, 8) + ".tmp";
}

std::string uniqueTemporaryName() {
  return ".lk-" + UUID::random().lowercaseText() + ".tmp";
}

bool isUnsupported(int code) {
  return code == EINVAL || code == ENOSYS || code == EOPNOTSUPP;
}

// Moves a name to another that must be free. Gives 0, EEXIST when it is taken, or another errno.
int renameExclusively(const Place& from, const std::string& name, const Place& to,
                      const FileSystemAbilities& abilities) {
  const int source = from.folder.get();
  const int target = to.folder.get();
  const char* old = name.c_str();
  const char* fresh = to.name.c_str();
  if (abilities.exclusiveRename) {
    if (renameat2(source, old, target, fresh, RENAME_NOREPLACE) == 0) return 0;
    if (!isUnsupported(errno)) return errno;
  }
  if (abilities.hardLinks) {
    if (linkat(source, old, target, fresh, 0) == 0) {
      if (unlinkat(source, old, 0) == 0) return 0;
      const int code = errno;
      unlinkat(target, fresh, 0);
      return code;
    }
    if (!isUnsupported(errno) && errno != EPERM && errno != EMLINK) return errno;
  }
  // The last way: an empty file holds the name for the moment until the rename.
  const Descriptor holder(openat(target, fresh, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (!holder) return errno;
  if (renameat(source, old, target, fresh) == 0) return 0;
  const int code = errno;
  unlinkat(target, fresh, 0);
  return code;
}

// --- Drafts --------------------------------------------------------------------------------------

// New content on its way to a name: written without any name where the file system can do that,
// else under a temporary one. It goes without a trace unless it gets its place.
//
// Writers of the same file do not disturb each other. Whoever has the temporary name holds a lock
// on the file behind it. Whoever finds the name taken waits for that lock, and only a file that
// still has the name when the lock is won was left by a dead writer, and is removed. Where locks
// do not work, an anonymous draft, whole when it gets its name, may still have that name taken
// from it, which its writer sees; any other takes a name that nobody else uses.
class Draft {
 public:
  Draft(const Place& place, FileSystemAbilities abilities, mode_t mode)
      : place_(place), abilities_(abilities) {
    if (!abilities_.anonymousFiles || !openAnonymous(mode)) openNamed(mode);
  }
  ~Draft() {
    if (hasName_) unlinkat(place_.folder.get(), name_.c_str(), 0);
  }
  Draft(const Draft&) = delete;
  Draft& operator=(const Draft&) = delete;

  void write(std::string_view bytes);
  void copy(const Descriptor& from, const fs::path& path);
  void adopt(const Original& original);
  void setModified(const timespec& modified);

  // Content and attributes are on the disk, or it throws.
  void flush();

  enum class Outcome {
    done,
    nameTaken,
    needsName,  // an anonymous file cannot be named, or lost its name: start again with a name
  };
  Outcome replace();  // never nameTaken
  Outcome publish();

 private:
  bool openAnonymous(mode_t mode);
  void openNamed(mode_t mode);
  bool holdName();
  bool clearName() const;
  int takeName(const std::function<int()>& attempt);
  int linkAs(const std::string& name) const;
  bool stands(const std::string& name, const Descriptor& file) const;

  const Place& place_;
  FileSystemAbilities abilities_;
  Descriptor file_;
  std::string name_;      // the temporary one
  bool hasName_ = false;  // the draft stands under name_
  bool isAnonymous_ = false;
};

// False when the file system has no anonymous files.
bool Draft::openAnonymous(mode_t mode) {
  file_ = Descriptor(uninterrupted(
      [&] { return openat(place_.folder.get(), ".", O_TMPFILE | O_RDWR | O_CLOEXEC, mode); }));
  if (!file_) {
    // EISDIR and ENOENT: a kernel that takes the call for the opening of the folder.
    if (isUnsupported(errno) || errno == EISDIR || errno == ENOENT) return false;
    place_.fail(errno);
  }
  abilities_.locks = abilities_.locks && lockExclusively(file_);
  isAnonymous_ = true;
  return true;
}

void Draft::openNamed(mode_t mode) {
  const auto attempt = [&] {
    file_ = Descriptor(uninterrupted([&] {
      return openat(place_.folder.get(), name_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC,
                    mode);
    }));
    return file_ ? 0 : errno;
  };
  do {
    if (const int code = takeName(attempt)) place_.fail(code);
  } while (abilities_.locks && !holdName());
}

// Runs `attempt`, which gives an errno, with one name after another for as long as it gives EEXIST.
int Draft::takeName(const std::function<int()>& attempt) {
  const bool mayShare = abilities_.locks || isAnonymous_;
  name_ = mayShare ? temporaryName(place_.name) : uniqueTemporaryName();
  for (;;) {
    const int code = attempt();
    hasName_ = code == 0;
    if (code != EEXIST) return code;
    if (!clearName()) name_ = uniqueTemporaryName();
  }
}

// Locks the file that was just made under the name. False when the name must be taken again:
// another writer cleared it before the lock was there, or there are no locks.
bool Draft::holdName() {
  abilities_.locks = lockExclusively(file_);
  const bool isOurs = stands(name_, file_);
  if (isOurs && abilities_.locks) return true;
  if (isOurs) unlinkat(place_.folder.get(), name_.c_str(), 0);
  hasName_ = false;
  return false;
}

// Waits for a live writer to give up the name, or removes what a dead one left under it. False
// when this cannot be told or done, as with another user's file.
bool Draft::clearName() const {
  const Descriptor other(uninterrupted([&] {
    return openat(place_.folder.get(), name_.c_str(),
                  O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
  }));
  if (!other) return errno == ENOENT;
  if (abilities_.locks ? !lockExclusively(other) : !isAnonymous_) return false;
  if (!stands(name_, other)) return true;
  return unlinkat(place_.folder.get(), name_.c_str(), 0) == 0;
}

bool Draft::stands(const std::string& name, const Descriptor& file) const {
  const std::optional<struct stat> named = place_.info(name);
  struct stat open {};
  return named && fstat(file.get(), &open) == 0 && isSameFile(*named, open);
}

int Draft::linkAs(const std::string& name) const {
  const std::string self = "/proc/self/fd/" + std::to_string(file_.get());
  return linkat(AT_FDCWD, self.c_str(), place_.folder.get(), name.c_str(), AT_SYMLINK_FOLLOW) == 0
             ? 0
             : errno;
}

void Draft::write(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written =
        uninterrupted([&] { return ::write(file_.get(), bytes.data(), bytes.size()); });
    if (written < 0) place_.fail(errno);
    bytes.remove_prefix(static_cast<size_t>(written));
  }
}

// By offsets, so that a second draft begins at the file's start again.
void Draft::copy(const Descriptor& from, const fs::path& path) {
  static constexpr size_t kBlock = size_t{256} * 1024;
  std::string block(kBlock, '\0');
  for (uint64_t offset = 0;; offset += kBlock) {
    const size_t got = readAt(from, block.data(), kBlock, offset, path);
    write(std::string_view(block).substr(0, got));
    if (got < kBlock) return;
  }
}

void Draft::adopt(const Original& original) {
  writeAttributes(file_, original.attributes);  // first, while the draft is writable by us
  struct stat own {};
  if (fstat(file_.get(), &own) != 0) place_.fail(errno);
  const uid_t owner = original.info.st_uid;
  const gid_t group = original.info.st_gid;
  if ((own.st_uid != owner || own.st_gid != group) && fchown(file_.get(), owner, group) != 0) {
    static constexpr auto kKeepOwner = static_cast<uid_t>(-1);
    const bool groupKept = fchown(file_.get(), kKeepOwner, group) == 0;
    static_cast<void>(groupKept);  // only members may give a file to a group
  }
  static constexpr mode_t kPermissions = 0777;
  const mode_t mode = original.info.st_mode & kPermissions;
  if ((own.st_mode & kPermissions) != mode && fchmod(file_.get(), mode) != 0) place_.fail(errno);
  if (original.accessList) writeAttributes(file_, {{kAccessList, *original.accessList}});
}

void Draft::setModified(const timespec& modified) {
  const timespec times[] = {{.tv_sec = 0, .tv_nsec = UTIME_OMIT}, modified};
  if (futimens(file_.get(), times) != 0) place_.fail(errno);
}

void Draft::flush() {
  if (uninterrupted([&] { return fsync(file_.get()); }) != 0) place_.fail(errno);
  // Some file systems tell of a failure only when a descriptor is closed; ours must stay open,
  // because the lock goes with it.
  const int second = fcntl(file_.get(), F_DUPFD_CLOEXEC, 0);
  if (second < 0 || (::close(second) != 0 && errno != EINTR)) place_.fail(errno);
}

// No way to name an anonymous file, or no /proc to name it by.
bool cannotLink(int code) {
  return isUnsupported(code) || code == ENOENT || code == EPERM;
}

Draft::Outcome Draft::replace() {
  if (!hasName_) {
    const int code = takeName([&] { return linkAs(name_); });
    if (cannotLink(code)) return Outcome::needsName;
    if (code != 0) place_.fail(code);
  }
  const int folder = place_.folder.get();
  const bool isRenamed = renameat(folder, name_.c_str(), folder, place_.name.c_str()) == 0;
  const int code = errno;
  if (isRenamed) {
    hasName_ = false;
    return Outcome::done;
  }
  if (code != ENOENT || !isAnonymous_) place_.fail(code);
  // Another writer without locks took the name, and perhaps gave the draft its place.
  hasName_ = false;
  return stands(place_.name, file_) ? Outcome::done : Outcome::needsName;
}

Draft::Outcome Draft::publish() {
  const int code =
      hasName_ ? renameExclusively(place_, name_, place_, abilities_) : linkAs(place_.name);
  if (code == EEXIST) return Outcome::nameTaken;
  if (!hasName_ && cannotLink(code)) return Outcome::needsName;
  if (code != 0) place_.fail(code);
  hasName_ = false;
  return Outcome::done;
}

// --- Moves ---------------------------------------------------------------------------------------

// One entry under two spellings, on a file system that does not tell them apart.
bool isSameEntry(const Place& a, const Place& b) {
  const std::optional<struct stat> first = a.info(a.name);
  const std::optional<struct stat> second = b.info(b.name);
  if (!first || !second || !isSameFile(*first, *second)) return false;
  return first->st_nlink == 1 || S_ISDIR(first->st_mode);
}

bool publishNew(const Place& place, FileSystemAbilities abilities, mode_t mode,
                Durability durability, const std::function<void(Draft&)>& fill) {
  for (;;) {
    Draft draft(place, abilities, mode);
    fill(draft);
    if (durability == Durability::now) draft.flush();
    const Draft::Outcome outcome = draft.publish();
    if (outcome == Draft::Outcome::nameTaken) return false;
    if (outcome == Draft::Outcome::done) break;
    abilities.anonymousFiles = false;
  }
  if (durability == Durability::now) flushFolder(place.folder, place.path);
  return true;
}

constexpr mode_t kPrivate = 0600;  // until the draft has its original's mode
constexpr mode_t kNewFile = 0666;

bool createLike(const Place& place, std::string_view bytes, const FileSystemAbilities& abilities,
                const Original& original) {
  return publishNew(place, abilities, kPrivate, Durability::now, [&](Draft& draft) {
    draft.write(bytes);
    draft.adopt(original);
    draft.setModified(original.info.st_mtim);
  });
}

bool moveAcross(const Place& source, const Place& target, const FileSystemAbilities& abilities) {
  const std::optional<struct stat> info = source.info(source.name);
  if (!info) source.fail(ENOENT);
  const std::string bytes = readFile(source.path);
  const Original original = readOriginal(source, *info);
  if (!createLike(target, bytes, abilities, original)) return false;
  // What somebody wrote since it was read is not in the copy.
  const std::optional<struct stat> now = source.info(source.name);
  if (!now || !isSameFile(*now, *info) || now->st_size != info->st_size ||
      now->st_mtim.tv_sec != info->st_mtim.tv_sec ||
      now->st_mtim.tv_nsec != info->st_mtim.tv_nsec) {
    unlinkat(target.folder.get(), target.name.c_str(), 0);
    throw FileChanged(source.path);
  }
  if (unlinkat(source.folder.get(), source.name.c_str(), 0) != 0) {
    const int code = errno;
    unlinkat(target.folder.get(), target.name.c_str(), 0);
    source.fail(code);
  }
  flushFolder(source.folder, source.path);
  return true;
}

// With a lock, only what it was taken on.
void replace(const fs::path& path, std::string_view bytes, FileSystemAbilities abilities,
             const FileLock* lock) {
  const Place place = openPlace(followLinks(path));
  const std::optional<Original> original = replaceable(place);
  for (;;) {
    Draft draft(place, abilities, original ? 0600 : 0666);
    draft.write(bytes);
    if (original) draft.adopt(*original);
    draft.flush();
    if (lock != nullptr) lock->requireUnchanged();
    if (draft.replace() == Draft::Outcome::done) break;
    abilities.anonymousFiles = false;
  }
  flushFolder(place.folder, place.path);
}

}  // namespace

void replaceFile(const fs::path& path, std::string_view bytes, FileSystemAbilities abilities) {
  replace(path, bytes, abilities, nullptr);
}

bool createFile(const fs::path& path, std::string_view bytes, FileSystemAbilities abilities,
                Durability durability) {
  const Place place = openPlace(path);
  if (place.info(place.name)) return false;  // spares the writing; the naming decides
  return publishNew(place, abilities, kNewFile, durability,
                    [&](Draft& draft) { draft.write(bytes); });
}

bool copyToNewFile(const fs::path& from, const fs::path& to, FileSystemAbilities abilities,
                   Durability durability) {
  const Descriptor source = openRegularItself(from);
  struct stat info {};
  if (fstat(source.get(), &info) != 0) throw FileError(from, errno);
  const Place place = openPlace(to);
  if (place.info(place.name)) return false;
  return publishNew(place, abilities, kNewFile, durability, [&](Draft& draft) {
    draft.copy(source, from);
    draft.setModified(info.st_mtim);
  });
}

bool moveFile(const fs::path& from, const fs::path& to, FileSystemAbilities abilities) {
  const Place source = openPlace(from);
  const Place target = openPlace(to);
  const int code = renameExclusively(source, source.name, target, abilities);
  if (code == EXDEV) return moveAcross(source, target, abilities);
  if (code == EEXIST) {
    if (!isSameEntry(source, target)) return false;
    if (renameat(source.folder.get(), source.name.c_str(), target.folder.get(),
                 target.name.c_str()) != 0) {
      source.fail(errno);
    }
  } else if (code != 0) {
    source.fail(code);
  }
  flushFolder(target.folder, target.path);
  flushFolder(source.folder, source.path);
  return true;
}

void replaceFile(const fs::path& path, std::string_view bytes) {
  replaceFile(path, bytes, FileSystemAbilities{});
}

void replaceFile(const FileLock& lock, std::string_view bytes) {
  replace(lock.path(), bytes, FileSystemAbilities{}, &lock);
}

bool createFile(const fs::path& path, std::string_view bytes, Durability durability) {
  return createFile(path, bytes, FileSystemAbilities{}, durability);
}

bool copyToNewFile(const fs::path& from, const fs::path& to, Durability durability) {
  return copyToNewFile(from, to, FileSystemAbilities{}, durability);
}

bool moveFile(const fs::path& from, const fs::path& to) {
  return moveFile(from, to, FileSystemAbilities{});
}

}  // namespace lk
