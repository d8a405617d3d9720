#pragma once

// File descriptors as the sources of this folder use them; nothing above includes this.

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include "LKCore/Base/Time.h"
#include "LKCore/Platform/Files.h"

namespace lk {

// An open descriptor, or none; closed when it goes. An error of that close is lost.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int descriptor) noexcept : descriptor_(descriptor) {}
  ~Descriptor() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  Descriptor(Descriptor&& other) noexcept : descriptor_(other.release()) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int get() const noexcept { return descriptor_; }
  explicit operator bool() const noexcept { return descriptor_ >= 0; }
  int release() noexcept { return std::exchange(descriptor_, -1); }

 private:
  int descriptor_ = -1;
};

// Repeats a system call for as long as signals interrupt it.
template <typename Call>
auto uninterrupted(Call call) {
  auto result = call();
  while (result == -1 && errno == EINTR) result = call();
  return result;
}

// An existing regular file, for reading. Never waits. Throws FileError, for what is no regular
// file with EISDIR or EINVAL.
Descriptor openRegular(const std::filesystem::path& path);

// The same, but a symbolic link is refused (ELOOP).
Descriptor openRegularItself(const std::filesystem::path& path);

// The number of bytes read at `offset`, less than `size` only at the file's end.
size_t readAt(const Descriptor& file, char* buffer, size_t size, uint64_t offset,
              const std::filesystem::path& path);

// The whole content from the descriptor's position on; `path` is for messages.
std::string readAll(const Descriptor& file, const std::filesystem::path& path);

// flock, exclusive, waiting. False when the file system gives no such lock.
bool lockExclusively(const Descriptor& file) noexcept;

bool isSameFile(const struct stat& a, const struct stat& b) noexcept;

// The attribute's value; nothing when there is none or it cannot be read.
std::optional<std::string> readAttribute(const Descriptor& file, const std::string& name);
FileAttributes readAttributes(const Descriptor& file);
void writeAttributes(const Descriptor& file, const FileAttributes& attributes);

// Puts the folder's entries on the disk. Passes over a file system that cannot.
void flushFolder(const Descriptor& folder, const std::filesystem::path& path);

inline timespec toTimespec(Instant instant) noexcept {
  return {.tv_sec = instant.seconds, .tv_nsec = instant.nanoseconds};
}

}  // namespace lk
