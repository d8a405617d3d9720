#include "LKCore/Platform/FolderReader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <new>
#include <stdexcept>

#include "LKCore/Platform/Descriptor.h"

namespace lk {

namespace {

// A regular file needs one byte more than it holds: the read that finds its end.
constexpr size_t kEndProbe = 1;

// The number of bytes read; nothing when reading fails. `expected` saves the buffer from growing.
std::optional<size_t> fill(std::string& buffer, const Descriptor& file, size_t expected,
                           size_t limit) {
  if (buffer.size() < expected) buffer.resize(expected);
  for (size_t filled = 0;;) {
    if (filled == limit) return filled;
    if (filled == buffer.size()) buffer.resize(buffer.size() * 2);
    const size_t room = std::min(buffer.size(), limit) - filled;
    const ssize_t got =
        uninterrupted([&] { return ::read(file.get(), buffer.data() + filled, room); });
    if (got < 0) return std::nullopt;
    if (got == 0) return filled;
    filled += static_cast<size_t>(got);
  }
}

}  // namespace

FolderReader::FolderReader(const std::filesystem::path& folder)
    : folder_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {}

FolderReader::~FolderReader() {
  if (folder_ >= 0) ::close(folder_);
}

std::optional<FolderReader::File> FolderReader::read(const std::string& relativePath,
                                                     size_t limit) {
  if (folder_ < 0) return std::nullopt;
  constexpr int kFlags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  const Descriptor file(
      uninterrupted([&] { return ::openat(folder_, relativePath.c_str(), kFlags); }));
  struct stat info {};
  if (!file || ::fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode)) return std::nullopt;
  try {
    const auto size =
        fill(buffer_, file, std::min(static_cast<size_t>(info.st_size) + kEndProbe, limit), limit);
    if (!size) return std::nullopt;
    return File{std::string_view(buffer_).substr(0, *size),
                {info.st_mtim.tv_sec, static_cast<int32_t>(info.st_mtim.tv_nsec)}};
  } catch (const std::bad_alloc&) {
    return std::nullopt;
  } catch (const std::length_error&) {
    return std::nullopt;
  }
}

}  // namespace lk
