#pragma once

// Files as the system uses them: read whole, changed in memory, replaced whole.
//
// Every function that fails throws FileError with the errno and the path, and leaves what was
// there as it was. One exception: when the disk reports an error only while the folder is flushed
// (EIO), the change is in place, but may not outlive a power cut.
//
//     retriedWhenChanged([&] {
//       const FileLock lock = FileLock::forUpdate(path);   // other writers of this file wait
//       const std::string bytes = readFile(lock.path());
//       replaceFile(lock, changed(bytes));                 // old or new, never a mixture
//     });

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "LKCore/Base/Error.h"
#include "LKCore/Base/Time.h"

namespace lk {

// A system call on a file that failed. The description reads "PATH: CAUSE", the cause being the
// system's own words for the errno, e.g. "/notes/Plan.md: No space left on device".
class FileError : public Error {
 public:
  FileError(std::filesystem::path path, int code);

  const std::filesystem::path& path() const noexcept { return path_; }
  int code() const noexcept { return code_; }  // errno
  std::string cause() const;                   // the system's words for the errno

 private:
  std::filesystem::path path_;
  int code_;
};

// Somebody who takes no lock, such as a sync program or an editor, changed, replaced or removed the
// file while a change of it was under way (EBUSY).
class FileChanged : public FileError {
 public:
  explicit FileChanged(std::filesystem::path path);
};

// The errno behind a FileError or a system_error; 0 for any other error.
int errnoOf(const std::exception& error) noexcept;

// True for the codes of a missing permission (EPERM, EACCES).
bool isPermissionError(int code) noexcept;

// --- Reading -------------------------------------------------------------------------------------

// The whole file. A folder, a FIFO or a device is refused (EISDIR, EINVAL) and never blocks.
std::string readFile(const std::filesystem::path& path);

// The whole file, unless the name is a symbolic link (ELOOP) or the file is larger than `limit`
// bytes (EFBIG): for files that somebody else made.
std::string readFileItself(const std::filesystem::path& path, uint64_t limit);

// True when both names are regular files, not links to one, that hold the same bytes. False also
// when one of them cannot be read. Neither is held in memory.
bool haveSameBytes(const std::filesystem::path& a, const std::filesystem::path& b);

// The first `limit` bytes of the file, or all of it when it is shorter.
std::string readFileStart(const std::filesystem::path& path, size_t limit);

struct FileInfo {
  Instant modified;
  std::optional<Instant> created;  // birth time, where the file system keeps one
  uint64_t size = 0;               // bytes
  bool isRegular = false;
  bool isDirectory = false;
  bool isExecutable = false;  // any execute bit

  bool operator==(const FileInfo&) const = default;
};

// Follows symbolic links. Nothing when there is nothing at the path; throws for any other failure.
std::optional<FileInfo> fileInfo(const std::filesystem::path& path);

// True when something, if only a dangling link, has this name.
bool nameIsTaken(const std::filesystem::path& path);

// --- Writing -------------------------------------------------------------------------------------

// Replaces the file's content, or makes the file. The new content is whole on the disk before the
// name points to it, and the folder is flushed after; a crash at any moment leaves the old file or
// the new one and no other trace that outlives the next write. An existing file keeps its mode,
// its owner where that is allowed and its `user.` attributes. A symbolic link stays and its target
// is replaced. Refuses to replace a file that this user may not write (EACCES), and what is no
// regular file (EISDIR, EINVAL).
//
// While it writes, at most one hidden file ".lk-<16 hex digits>.tmp" stands beside the target. Its
// name comes from the target's, so that the next write takes over what a killed writer left. Only
// a file system with neither anonymous files nor locks needs a fresh name each time, and may keep
// such a file when a writer is killed there.
void replaceFile(const std::filesystem::path& path, std::string_view bytes);

// When a new file is safe from a power cut.
enum class Durability {
  now,      // on return
  atFlush,  // after flushFileSystem; for the many files of one operation
};

// Makes a file that was not there, as carefully. False, with nothing changed, when the name is
// taken, also when another process takes it at the same moment. However late it is durable, a
// process that is killed leaves no part of a file.
[[nodiscard]] bool createFile(const std::filesystem::path& path, std::string_view bytes,
                              Durability durability = Durability::now);

// Makes such a file with the bytes and the modification date of another, which are not held in
// memory. Refuses a symbolic link to copy from (ELOOP) and what is no regular file.
[[nodiscard]] bool copyToNewFile(const std::filesystem::path& from, const std::filesystem::path& to,
                                 Durability durability = Durability::now);

// Puts on the disk all that was written to the file system which holds the path, and tells (EIO)
// when some of it could not be.
void flushFileSystem(const std::filesystem::path& path);

// Renames within or across folders. False, with nothing changed, when the target's name is taken by
// another file; a change of case alone is no such clash. Across file systems a regular file is
// copied with its mode, attributes and date, and then removed.
[[nodiscard]] bool moveFile(const std::filesystem::path& from, const std::filesystem::path& to);

// Removes the file; one that is not there is an error (ENOENT).
void removeFile(const std::filesystem::path& path);

// Makes the folder and the missing ones above it; one that is there is fine.
void createFolders(const std::filesystem::path& path);

void setModified(const std::filesystem::path& path, Instant modified);

using FileAttributes = std::map<std::string, std::string>;

// The `user.` attributes; empty when there are none or they cannot be read. Never fails.
FileAttributes readAttributes(const std::filesystem::path& path);
// Sets those attributes, leaving others; what the file system refuses is passed over.
void writeAttributes(const std::filesystem::path& path, const FileAttributes& attributes);

// --- Locking -------------------------------------------------------------------------------------

// The advisory lock that every writer of the library takes around read-change-write. It sits on
// the file itself (flock), so no lock file appears anywhere, and the kernel releases it when the
// process dies. Holding it means that the path still names the locked file. Waits for its turn.
// A file system without locks gives a lock that excludes nobody.
class FileLock {
 public:
  // Throws FileError when the file cannot be opened for reading.
  static FileLock forUpdate(const std::filesystem::path& path);

  ~FileLock();
  FileLock(FileLock&&) noexcept;
  FileLock& operator=(FileLock&&) noexcept;
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

  // The locked file with symbolic links resolved.
  const std::filesystem::path& path() const noexcept { return path_; }

  // Throws FileChanged unless the path still names the locked file, with the size and the date
  // that it had when the lock was won.
  void requireUnchanged() const;

 private:
  struct Stamp {
    Instant modified;
    int64_t size = 0;

    bool operator==(const Stamp&) const = default;
  };

  FileLock(std::filesystem::path path, int descriptor) noexcept;
  static Stamp stampOf(int descriptor);

  std::filesystem::path path_;
  int descriptor_ = -1;
  Stamp stamp_;
};

// Replaces the locked file as `replaceFile` does, but leaves it to whoever changed it without a
// lock since this one was won: throws FileChanged then. That is looked at when the new content is
// on the disk, which can take long, so that only a change in the very moment of the naming is lost.
void replaceFile(const FileLock& lock, std::string_view bytes);

// Runs `change`, which takes the lock, reads and replaces; again, a few times, when it ends with
// FileChanged, so that it is made to what somebody else has written.
template <typename Change>
auto retriedWhenChanged(const Change& change) {
  constexpr int kRetries = 9;
  for (int retry = 0; retry < kRetries; ++retry) {
    try {
      return change();
    } catch (const FileChanged&) {
      continue;
    }
  }
  return change();
}

// --- Addresses -----------------------------------------------------------------------------------

// "file:///home/ann/My%20notes/Plan.md", absolute, percent-encoded; a folder ends in "/".
std::string fileURL(const std::filesystem::path& path, bool isDirectory = false);

// The path with symbolic links resolved as far as it exists, absolute and without "." and "..".
std::filesystem::path resolved(const std::filesystem::path& path);

}  // namespace lk
