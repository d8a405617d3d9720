#include "LKCore/Platform/Files.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/xattr.h>

#include <algorithm>
#include <new>
#include <system_error>

#include "LKCore/Platform/Descriptor.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

std::string causeOf(int code) {
  return std::generic_category().message(code);
}

// The file's size with room for one byte more, so that a file that did not grow is read by one
// call and its end seen by the next; at least a block, for files that report no size.
size_t firstBufferSize(const Descriptor& file) {
  static constexpr size_t kBlock = 4096;
  struct stat info {};
  if (fstat(file.get(), &info) != 0 || info.st_size <= 0) return kBlock;
  return static_cast<size_t>(info.st_size) + 1;
}

// Reads until the end or until `limit` bytes; gives the number of bytes.
size_t readInto(char* buffer, size_t limit, const Descriptor& file, const fs::path& path) {
  size_t size = 0;
  while (size < limit) {
    const ssize_t got =
        uninterrupted([&] { return ::read(file.get(), buffer + size, limit - size); });
    if (got < 0) throw FileError(path, errno);
    if (got == 0) break;
    size += static_cast<size_t>(got);
  }
  return size;
}

Instant toInstant(const statx_timestamp& stamp) {
  return {.seconds = stamp.tv_sec, .nanoseconds = static_cast<int32_t>(stamp.tv_nsec)};
}

// Calls `read(buffer, size)` with a buffer of the size that it asks for, again when the value grew
// in between.
template <typename Read>
std::optional<std::string> readGrowing(Read read) {
  static constexpr int kAttempts = 16;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    const ssize_t size = read(nullptr, size_t{0});
    if (size < 0) return std::nullopt;
    std::string value(static_cast<size_t>(size), '\0');
    if (size == 0) return value;
    const ssize_t got = read(value.data(), value.size());
    if (got >= 0) {
      value.resize(static_cast<size_t>(got));
      return value;
    }
    if (errno != ERANGE) return std::nullopt;
  }
  return std::nullopt;
}

bool isUnreserved(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         std::string_view("-._~!$&'()*+,=:@/").find(c) != std::string_view::npos;
}

Descriptor openFolder(const fs::path& path) {
  return Descriptor(
      uninterrupted([&] { return ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
}

}  // namespace

FileError::FileError(fs::path path, int code)
    : Error(path.string() + ": " + causeOf(code)), path_(std::move(path)), code_(code) {}

std::string FileError::cause() const {
  return causeOf(code_);
}

FileChanged::FileChanged(fs::path path) : FileError(std::move(path), EBUSY) {}

int errnoOf(const std::exception& error) noexcept {
  if (const auto* file = dynamic_cast<const FileError*>(&error)) return file->code();
  if (const auto* system = dynamic_cast<const std::system_error*>(&error)) {
    return system->code().value();
  }
  return 0;
}

bool isPermissionError(int code) noexcept {
  return code == EPERM || code == EACCES;
}

// --- Reading -------------------------------------------------------------------------------------

namespace {

Descriptor openRegularWith(const fs::path& path, int flags) {
  // O_NONBLOCK: opening a FIFO would wait for a writer.
  constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  Descriptor file(uninterrupted([&] { return ::open(path.c_str(), kFlags | flags); }));
  struct stat info {};
  if (!file || fstat(file.get(), &info) != 0) throw FileError(path, errno);
  if (S_ISDIR(info.st_mode)) throw FileError(path, EISDIR);
  if (!S_ISREG(info.st_mode)) throw FileError(path, EINVAL);
  return file;
}

}  // namespace

Descriptor openRegular(const fs::path& path) {
  return openRegularWith(path, 0);
}

Descriptor openRegularItself(const fs::path& path) {
  return openRegularWith(path, O_NOFOLLOW);
}

size_t readAt(const Descriptor& file, char* buffer, size_t size, uint64_t offset,
              const fs::path& path) {
  size_t filled = 0;
  while (filled < size) {
    const auto at = static_cast<off_t>(offset + filled);
    const ssize_t got =
        uninterrupted([&] { return ::pread(file.get(), buffer + filled, size - filled, at); });
    if (got < 0) throw FileError(path, errno);
    if (got == 0) break;
    filled += static_cast<size_t>(got);
  }
  return filled;
}

std::string readAll(const Descriptor& file, const fs::path& path) {
  try {
    std::string bytes(firstBufferSize(file), '\0');
    size_t size = readInto(bytes.data(), bytes.size(), file, path);
    while (size == bytes.size()) {
      bytes.resize(2 * size);
      size += readInto(bytes.data() + size, bytes.size() - size, file, path);
    }
    bytes.resize(size);
    return bytes;
  } catch (const std::bad_alloc&) {
    throw FileError(path, ENOMEM);
  } catch (const std::length_error&) {
    throw FileError(path, EFBIG);
  }
}

std::string readFile(const fs::path& path) {
  return readAll(openRegular(path), path);
}

std::string readFileItself(const fs::path& path, uint64_t limit) {
  const Descriptor file = openRegularItself(path);
  struct stat info {};
  if (fstat(file.get(), &info) != 0) throw FileError(path, errno);
  if (static_cast<uint64_t>(info.st_size) > limit) throw FileError(path, EFBIG);
  std::string bytes = readAll(file, path);
  if (bytes.size() > limit) throw FileError(path, EFBIG);  // it grew
  return bytes;
}

bool haveSameBytes(const fs::path& a, const fs::path& b) {
  static constexpr size_t kBlock = size_t{128} * 1024;
  try {
    const Descriptor first = openRegularItself(a);
    const Descriptor second = openRegularItself(b);
    struct stat firstInfo {};
    struct stat secondInfo {};
    if (fstat(first.get(), &firstInfo) != 0 || fstat(second.get(), &secondInfo) != 0) return false;
    if (firstInfo.st_size != secondInfo.st_size) return false;
    std::string left(kBlock, '\0');
    std::string right(kBlock, '\0');
    for (uint64_t offset = 0;; offset += kBlock) {
      const size_t got = readAt(first, left.data(), kBlock, offset, a);
      if (readAt(second, right.data(), kBlock, offset, b) != got) return false;
      if (std::string_view(left).substr(0, got) != std::string_view(right).substr(0, got)) {
        return false;
      }
      if (got < kBlock) return true;
    }
  } catch (const FileError&) {
    return false;
  }
}

std::string readFileStart(const fs::path& path, size_t limit) {
  const Descriptor file = openRegular(path);
  std::string bytes(std::min(limit, firstBufferSize(file)), '\0');
  bytes.resize(readInto(bytes.data(), bytes.size(), file, path));
  return bytes;
}

std::optional<FileInfo> fileInfo(const fs::path& path) {
  struct statx info {};
  const unsigned int wanted = STATX_TYPE | STATX_MODE | STATX_SIZE | STATX_MTIME | STATX_BTIME;
  if (statx(AT_FDCWD, path.c_str(), 0, wanted, &info) != 0) {
    if (errno == ENOENT || errno == ENOTDIR) return std::nullopt;
    throw FileError(path, errno);
  }
  FileInfo result;
  result.modified = toInstant(info.stx_mtime);
  if ((info.stx_mask & STATX_BTIME) != 0) result.created = toInstant(info.stx_btime);
  result.size = info.stx_size;
  result.isRegular = S_ISREG(info.stx_mode);
  result.isDirectory = S_ISDIR(info.stx_mode);
  result.isExecutable = (info.stx_mode & (S_IXUSR | S_IXGRP | S_IXOTH)) != 0;
  return result;
}

bool nameIsTaken(const fs::path& path) {
  struct stat info {};
  if (lstat(path.c_str(), &info) == 0) return true;
  if (errno == ENOENT || errno == ENOTDIR) return false;
  throw FileError(path, errno);
}

// --- Names, folders and dates --------------------------------------------------------------------

void removeFile(const fs::path& path) {
  if (::unlink(path.c_str()) != 0) throw FileError(path, errno);
}

void flushFolder(const Descriptor& folder, const fs::path& path) {
  if (uninterrupted([&] { return fsync(folder.get()); }) == 0) return;
  // EBADF: a folder that may be searched but not read has only a descriptor that cannot flush.
  if (errno != EINVAL && errno != EBADF && errno != EROFS && errno != EOPNOTSUPP) {
    throw FileError(path, errno);
  }
}

void flushFileSystem(const fs::path& path) {
  const Descriptor place(
      uninterrupted([&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK); }));
  if (!place || uninterrupted([&] { return syncfs(place.get()); }) != 0) {
    throw FileError(path, errno);
  }
}

void createFolders(const fs::path& path) {
  const std::optional<FileInfo> there = fileInfo(path);
  if (there && there->isDirectory) return;
  if (there) throw FileError(path, ENOTDIR);
  const fs::path folder = path.has_filename() ? path : path.parent_path();
  const fs::path parent = folder.parent_path();
  if (!parent.empty() && parent != folder) createFolders(parent);
  if (::mkdir(folder.c_str(), 0777) != 0 && errno != EEXIST) throw FileError(path, errno);
  if (const Descriptor above = openFolder(parent.empty() ? "." : parent)) flushFolder(above, path);
}

void setModified(const fs::path& path, Instant modified) {
  const timespec times[] = {{.tv_sec = 0, .tv_nsec = UTIME_OMIT}, toTimespec(modified)};
  if (utimensat(AT_FDCWD, path.c_str(), times, 0) != 0) throw FileError(path, errno);
}

// --- Attributes ----------------------------------------------------------------------------------

std::optional<std::string> readAttribute(const Descriptor& file, const std::string& name) {
  return readGrowing(
      [&](char* buffer, size_t size) { return fgetxattr(file.get(), name.c_str(), buffer, size); });
}

FileAttributes readAttributes(const Descriptor& file) {
  FileAttributes attributes;
  const std::optional<std::string> names =
      readGrowing([&](char* buffer, size_t size) { return flistxattr(file.get(), buffer, size); });
  if (!names) return attributes;
  for (size_t at = 0; at < names->size();) {
    const std::string name = names->c_str() + at;
    at += name.size() + 1;
    if (!name.starts_with("user.")) continue;
    if (std::optional<std::string> value = readAttribute(file, name)) {
      attributes.emplace(name, std::move(*value));
    }
  }
  return attributes;
}

void writeAttributes(const Descriptor& file, const FileAttributes& attributes) {
  for (const auto& [name, value] : attributes) {
    fsetxattr(file.get(), name.c_str(), value.data(), value.size(), 0);
  }
}

FileAttributes readAttributes(const fs::path& path) {
  try {
    return readAttributes(openRegular(path));
  } catch (const FileError&) {
    return {};
  }
}

void writeAttributes(const fs::path& path, const FileAttributes& attributes) {
  if (!attributes.empty()) writeAttributes(openRegular(path), attributes);
}

// --- Locking -------------------------------------------------------------------------------------

bool isSameFile(const struct stat& a, const struct stat& b) noexcept {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool lockExclusively(const Descriptor& file) noexcept {
  return uninterrupted([&] { return flock(file.get(), LOCK_EX); }) == 0;
}

namespace {

// Network file systems lock for writers only. Tried second, because closing a file that was open
// for writing wakes everyone who watches the folder for changes.
void lockOpenForWriting(Descriptor& file, const fs::path& path) {
  Descriptor writable(uninterrupted(
      [&] { return ::open(path.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK | O_NOCTTY); }));
  if (writable && lockExclusively(writable)) file = std::move(writable);
}

bool stillNames(const fs::path& path, int file) {
  struct stat named {};
  struct stat open {};
  return fstat(file, &open) == 0 && stat(path.c_str(), &named) == 0 && isSameFile(named, open);
}

}  // namespace

FileLock FileLock::forUpdate(const fs::path& path) {
  for (;;) {
    std::error_code error;
    fs::path target = fs::canonical(path, error);
    if (error) throw FileError(path, error.value());
    Descriptor file = openRegular(target);
    if (!lockExclusively(file) && errno == EBADF) lockOpenForWriting(file, target);
    // While it waited, the one before may have put a new file in this place.
    if (stillNames(target, file.get())) return {std::move(target), file.release()};
  }
}

FileLock::FileLock(fs::path path, int descriptor) noexcept
    : path_(std::move(path)), descriptor_(descriptor), stamp_(stampOf(descriptor)) {}

FileLock::Stamp FileLock::stampOf(int descriptor) {
  struct stat info {};
  if (fstat(descriptor, &info) != 0) return {};
  return {.modified = {.seconds = info.st_mtim.tv_sec,
                       .nanoseconds = static_cast<int32_t>(info.st_mtim.tv_nsec)},
          .size = info.st_size};
}

void FileLock::requireUnchanged() const {
  if (!stillNames(path_, descriptor_) || stampOf(descriptor_) != stamp_) throw FileChanged(path_);
}

FileLock::~FileLock() {
  const Descriptor closed(descriptor_);
}

FileLock::FileLock(FileLock&& other) noexcept
    : path_(std::move(other.path_)),
      descriptor_(std::exchange(other.descriptor_, -1)),
      stamp_(other.stamp_) {}

FileLock& FileLock::operator=(FileLock&& other) noexcept {
  std::swap(path_, other.path_);
  std::swap(descriptor_, other.descriptor_);
  std::swap(stamp_, other.stamp_);
  return *this;
}

// --- Addresses -----------------------------------------------------------------------------------

std::string fileURL(const fs::path& path, bool isDirectory) {
  static constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string url = "file://";
  for (const char c : fs::absolute(path).string()) {
    if (isUnreserved(c)) {
      url.push_back(c);
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    url.push_back('%');
    url.push_back(kDigits[byte >> 4U]);
    url.push_back(kDigits[byte & 0x0FU]);
  }
  if (isDirectory && !url.ends_with('/')) url.push_back('/');
  return url;
}

fs::path resolved(const fs::path& path) {
  std::error_code error;
  const fs::path whole = fs::absolute(path, error);
  fs::path result = fs::weakly_canonical(whole, error);
  if (error) result = whole.lexically_normal();
  // "folder/" is the folder.
  return result.has_filename() || result == result.root_path() ? result : result.parent_path();
}

}  // namespace lk
